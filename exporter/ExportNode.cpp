#include "exporter/ExportNode.h"

#include <string>

#include "core/ExtException.h"
#include "core/Log.h"
#include "core/Utf8.h"
#include "exporter/ExportGeometry.h"
#include "exporter/NQModelExporter.h"
#include "exporter/NodeSettings.h"
#include "exporter/ReportError.h"
#include "exporter/UserSettings.h"
#include "host/Constants.h"
#include "host/Matrix3.h"
#include "host/Object.h"
#include "model/Connector.h"
#include "model/ObjectRegistry.h"

namespace exporter {
namespace {

constexpr const char* kSourcePath = "Exporter\\src\\NQModelExporter";
// The longest connector name is one byte shorter than this.
constexpr int kMaxConnectorName = 64;

// A helper's box in model space: its corners through the object matrix and the axis change.
model::Box helperBox(NQModelExporter& exporter, host::INode* node, host::Object* object) {
    host::Box3 local;
    if (auto* dummy = dynamic_cast<host::DummyObject*>(object)) {
        local = dummy->GetBox();
    }
    const nq::Matrixd m = host::toMatrixd(node->GetObjectTM(exporter.time)) * coordinateConversion();
    model::Box box;
    for (const host::Point3& corner : {local.pmin, local.pmax}) {
        const nq::Vec3d p = m.transformPoint(nq::Vec3d{{corner.x, corner.y, corner.z}});
        box.expand(
            osg::Vec3f{{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])}});
    }
    return box;
}

bool isConnectorCandidate(NQModelExporter& exporter, host::INode* node, const std::string& name) {
    if (name == "ORIGIN") {
        return false;
    }
    if (name.size() > 15 && name.find("lights_direction") != std::string::npos) {
        return false;
    }
    if (node->IsGroupHead()) {
        return false;
    }
    return nq::utf8ToLower(name) != nq::utf8ToLower(exporter.sceneName);
}

void exportConnector(NQModelExporter& exporter, const model::Ptr<model::Node>& parent, host::INode* node,
                     const std::string& name, const NodeSettings& settings) {
    if (nq::utf8ToLower(name).find("dummy") != std::string::npos || settings.noConnector) {
        return;
    }
    model::Ptr<model::Connector> connector = model::createAs<model::Connector>("model::Connector");
    connector->properties = settings.properties;
    if (name.size() >= kMaxConnectorName) {
        reportError("Node '%s' has tool long name for connector (%d vs. %d)! \tFile: %s:%d.", name.c_str(),
                    static_cast<int>(name.size()), kMaxConnectorName, kSourcePath, __LINE__);
        return;
    }
    connector->name = name;
    // The object's place relative to the node: the object offset.
    model::Ptr<model::TransformNode> offset = model::createAs<model::TransformNode>("model::TransformNode");
    offset->matrix =
        host::toMatrixd(node->GetObjectTM(exporter.time) * host::Inverse(node->GetNodeTM(exporter.time)));
    parent->append(offset);
    connector->controlNode = offset;
    exporter.rootNode->addConnector(connector);
}

void exportHelper(NQModelExporter& exporter, const model::Ptr<model::Node>& parent, host::INode* node,
                  host::Object* object, const std::string& name, const NodeSettings& settings,
                  model::Box& box) {
    if (settings.flags & kBoundingBox) {
        exporter.rootNode->boundingBox = helperBox(exporter, node, object);
        float maxFrame = 0;
        if (model::getProperty(settings.properties, "maxFrame", maxFrame)) {
            userSettings().keysRescaleEnabled = true;
            userSettings().keysRescaleFactor =
                4800.0 / (exporter.ip->GetTicksPerFrame() * static_cast<double>(maxFrame));
        } else {
            userSettings().keysRescaleEnabled = false;
            userSettings().keysRescaleFactor = 1.0;
        }
    }
    if (settings.flags & kUserBox) {
        exporter.rootNode->userBox = helperBox(exporter, node, object);
    }
    if (settings.flags & kSkinBox) {
        box = helperBox(exporter, node, object);
    }
    if (settings.flags & (kLodRoot | kNumberRoot)) {
        // Lod roots and number roots take over their children once they are exported; until then
        // such a helper is walked like any other.
        nq::nq_log(kLogSource, kLogLevel, "Lod and number roots are not exported yet. Node: " + name);
    } else if (isConnectorCandidate(exporter, node, name)) {
        exportConnector(exporter, parent, node, name, settings);
    }
    if (name == "ORIGIN") {
        const host::Point3 t = node->GetObjectTM(exporter.time).GetTrans();
        exporter.origin = nq::Vec3d{{t.x, t.y, t.z}};
    }
}

// The text of the node's settings: the material's description first, then the node's own text.
std::string nodeText(host::INode* node) {
    // The description a material carries in its custom attribute of class
    // (0x07CB6596, 0x7E112E78) comes first once the host offers that attribute's text.
    return node->GetUserPropBuffer();
}

}  // namespace

int countNodes(host::INode* node) {
    int count = 1;
    const int children = node->NumberOfChildren();
    for (int i = 0; i < children; ++i) {
        count += countNodes(node->GetChildNode(i));
    }
    return count;
}

bool exportNode(NQModelExporter& exporter, model::Ptr<model::Node> parent, host::INode* node,
                model::Box box) {
    host::Interface& ip = *exporter.ip;
    const std::string name = node->GetName();
    ++exporter.nodesDone;
    ip.ProgressUpdate(static_cast<int>(static_cast<float>(exporter.nodesDone) /
                                       static_cast<float>(exporter.nodesTotal) * 100.0f),
                      true, nullptr);
    if (ip.GetCancel()) {
        return false;
    }
    const UserSettings& settingsRecord = userSettings();
    if (node->IsNodeHidden(false) && !settingsRecord.exportHiddenObjects()) {
        return true;
    }

    NodeSettings settings;
    settings.clear(settingsRecord.smoothNormals() == 1 || settingsRecord.smoothNormals() == 3);
    const std::string text = nodeText(node);
    if (!text.empty()) {
        try {
            parseNodeSettings(text, settings, settingsRecord.smoothNormals());
        } catch (const nq::ExtException& e) {
            if (settingsRecord.errorOnInvalidUserDefs()) {
                reportError("%s. Node: %s.\tFile: %s:%d.", e.message().c_str(), name.c_str(), kSourcePath,
                            __LINE__);
            }
        }
    }

    // The chain of transforms that carries the node: for now one static transform with the node's
    // local matrix at the export time. Animated transforms come with the animation export.
    model::Ptr<model::TransformNode> transform =
        model::createAs<model::TransformNode>("model::TransformNode");
    transform->name = name;
    transform->matrix =
        host::toMatrixd(node->GetNodeTM(exporter.time) * host::Inverse(node->GetParentTM(exporter.time)));
    parent->append(transform);
    parent = transform;

    host::ObjectState state = node->EvalWorldState(exporter.time, true);
    if (host::Object* object = state.obj) {
        switch (object->SuperClassID()) {
            case host::HELPER_CLASS_ID:
                exportHelper(exporter, parent, node, object, name, settings, box);
                break;
            case host::GEOMOBJECT_CLASS_ID:
                exportGeometry(exporter, parent, node, object, name, settings);
                break;
            case host::LIGHT_CLASS_ID:
            case host::SHAPE_CLASS_ID:
                // Lights and shapes join with their own export; until then they give nothing and
                // only the node's transforms stand.
                nq::nq_log(kLogSource, kLogLevel, "Object not exported yet (light or shape). Node: " + name);
                break;
            default:
                break;
        }
    }

    for (int i = 0; i < node->NumberOfChildren(); ++i) {
        if (ip.GetCancel()) {
            return false;
        }
        if (!exportNode(exporter, parent, node->GetChildNode(i), box)) {
            return false;
        }
    }
    return true;
}

}  // namespace exporter
