#pragma once
// The host's base of an export plug-in, and of the class descriptor through which the host
// finds and makes it. The virtual operations stand in the host's order.

#include <cstdint>
#include <string>

#include "host/Types.h"

namespace host {

class Interface;
// What the host tells an exporter about the export beyond the Interface; opaque here.
class ExpInterface;

class SceneExport {
public:
    virtual ~SceneExport() = default;
    virtual int ExtCount() = 0;
    virtual std::string Ext(int n) = 0;
    virtual std::string LongDesc() = 0;
    virtual std::string ShortDesc() = 0;
    virtual std::string AuthorName() = 0;
    virtual std::string CopyrightMessage() = 0;
    virtual std::string OtherMessage1() = 0;
    virtual std::string OtherMessage2() = 0;
    virtual unsigned int Version() = 0;
    virtual void ShowAbout(HWND parent) = 0;
    // Exports the scene of ip to name (UTF-8; null lets the exporter choose). Returns 0 when
    // the export was refused and non-zero otherwise.
    virtual int DoExport(const char* name, ExpInterface* ei, Interface* ip, bool suppressPrompts = false,
                         std::uint32_t options = 0) = 0;
    virtual bool SupportsOptions(int ext, std::uint32_t options) = 0;
};

class ClassDesc2 {
public:
    virtual ~ClassDesc2() = default;
    virtual int IsPublic() = 0;
    // A new instance of the class, owned by the caller; for an exporter a SceneExport*.
    virtual void* Create(bool loading = false) = 0;
    virtual std::string ClassName() = 0;
    virtual std::string InternalName() = 0;
    virtual SClass_ID SuperClassID() = 0;
    virtual Class_ID ClassID() = 0;
    virtual std::string Category() = 0;
    virtual HINSTANCE HInstance() = 0;
};

}  // namespace host
