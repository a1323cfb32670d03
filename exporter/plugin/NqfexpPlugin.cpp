// The entry points through which a host finds the exporter in the nqfexp library, the class
// descriptors, and the script primitives that loading the library registers. Everything else in
// the library stays hidden.

#include <cstdint>
#include <new>
#include <string>

#include "core/Vfs.h"
#include "exporter/NQModelExporter.h"
#include "exporter/ScriptPrimitives.h"
#include "host/Constants.h"
#include "host/SceneExport.h"
#include "host/ScriptValue.h"

#define NQ_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

// The library's module handle: its own address stands in for it.
host::HINSTANCE moduleHandle() {
    static int anchor = 0;
    return reinterpret_cast<host::HINSTANCE>(&anchor);
}

class NQModelExporterClassDesc : public host::ClassDesc2 {
public:
    int IsPublic() override { return 1; }
    void* Create(bool) override {
        return static_cast<host::SceneExport*>(new (std::nothrow) exporter::NQModelExporter());
    }
    std::string ClassName() override { return "NQModelExporter"; }
    std::string InternalName() override { return "NQModelExporter"; }
    host::SClass_ID SuperClassID() override { return host::SCENE_EXPORT_CLASS_ID; }
    host::Class_ID ClassID() override { return {0x28706CD4, 0x0BFF3C2F}; }
    std::string Category() override { return "nq::Model File Exporter"; }
    host::HINSTANCE HInstance() override { return moduleHandle(); }
};

// The toolbar's slot. The toolbar itself is a window of a GUI host; a headless host makes none.
class NQToolbarClassDesc : public host::ClassDesc2 {
public:
    int IsPublic() override { return 0; }
    void* Create(bool) override { return nullptr; }
    std::string ClassName() override { return "NQToolbar"; }
    std::string InternalName() override { return "NQToolbar"; }
    host::SClass_ID SuperClassID() override { return 0x270; }  // GUP_CLASS_ID
    host::Class_ID ClassID() override { return {0x28706CD5, 0x0BFF3C30}; }
    std::string Category() override { return "nq::Model File Exporter"; }
    host::HINSTANCE HInstance() override { return moduleHandle(); }
};

NQModelExporterClassDesc exporterDesc;
NQToolbarClassDesc toolbarDesc;

const host::Primitive exportToNqf("ExportToNQF", exporter::ExportToNQF);
const host::Primitive setNodeType("SetNodeType", exporter::SetNodeType);

// The library writes through its own file system table: native paths are reachable from load on.
const bool nativeMounted = [] {
    nqvfs::mountNative("/");
    return true;
}();

}  // namespace

NQ_EXPORT const char* LibDescription() {
    return "nqModel export";
}

NQ_EXPORT int LibNumberClasses() {
    return 2;
}

NQ_EXPORT host::ClassDesc2* LibClassDesc(int i) {
    switch (i) {
        case 0:
            return &exporterDesc;
        case 1:
            return &toolbarDesc;
        default:
            return nullptr;
    }
}

NQ_EXPORT unsigned long LibVersion() {
    return 0x69784200;
}

// The script primitive of the given name, or null: how a host reaches ExportToNQF and SetNodeType.
NQ_EXPORT host::PrimitiveFunction LibPrimitive(const char* name) {
    return host::Primitive::find(name);
}
