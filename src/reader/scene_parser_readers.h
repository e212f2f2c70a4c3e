#pragma once

#include "reader/scene_parser.h"
#include "scene/emission_overrides.h"
#include "scene/keyframe.h"
#include "scene/materials_basic.h"
#include "scene/scene_node_mesh.h"
#include "scene/wavelength_values.h"

#include <tinyxml.h>

#include <string>

// The element readers of SceneParser, shared among its source files. Every
// node reader takes the parser (for its name maps and the white point), the
// element and the directory of the file it stands in, to which paths are
// joined. Readers call the SceneParseUtils helpers directly: the parser turns
// their SceneParseUtilsExcep into SceneParserExcep where an element is handed
// to it, so that its callers meet one class.
namespace Velorn
{
namespace SceneReaders
{

typedef Reference<SceneNode> (*NodeReader)(SceneParser& parser, const TiXmlElement& element, const std::string& dir);

// Nodes (the dispatch table of SceneParser::parseElement).
Reference<SceneNode> readRenderSettingsNode(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readCamera(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readMaterial(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readMedium(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readSphere(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readMesh(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readParametricSurface(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readScatter(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readOldModel(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readModel2(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readSkylight(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readTonemapping(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readBackgroundSettings(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readOldBackground(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readEnvMap(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readMetaData(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Reference<SceneNode> readSectionPlane(SceneParser& parser, const TiXmlElement& element, const std::string& dir);

// A renderer_settings element, also the one of settings files.
Reference<SceneNodeRenderSettings> readRenderSettings(const TiXmlElement& element);

// The compact old forms, which make several nodes from one element. The
// nodes come in the order in which they go into the tree (the ones referred
// to first); they take their references directly and hold no UIDs of the
// file.
Vector<Reference<SceneNode>> readExitPortal(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Vector<Reference<SceneNode>> readMeshLight(SceneParser& parser, const TiXmlElement& element, const std::string& dir);
Vector<Reference<SceneNode>> readRectangleLight(SceneParser& parser, const TiXmlElement& element, const std::string& dir);

// What several readers share.

// The common start of a node: name (default_name when absent) and uid
// (invalid when absent).
void readNameAndUID(const TiXmlElement& element, const String& default_name, SceneNode& node);
void readUID(const TiXmlElement& element, SceneNode& node);
// The UID in the child name; the child must be there.
UID parseUID(const TiXmlElement& parent, const char* name);
// The UIDs in the children called child_name of list, in order.
Vector<UID> parseUIDList(const TiXmlElement& list, const char* child_name);

// The keyframe elements of element, in order.
Vector<KeyFrame> readKeyFrames(const TiXmlElement& element);
// A transform path: one keyframe at time 0 at the position in the child
// single_pos when there is one, otherwise the keyframe elements.
Vector<KeyFrame> readTransformPath(const TiXmlElement& element, const char* single_pos);
// A keyframe at time 0 at pos, without rotation.
KeyFrame keyFrameAt(const Vec3d& pos);

// The first child of element among kinds, which may stand beside other
// children; none throws none_message with the place, two throw.
const TiXmlElement& oneKindOf(const TiXmlElement& element, const char* const* kinds, const std::string& none_message);

// Nodes named earlier in the file. Unknown names throw with the place of
// element.
Reference<SceneNodeMaterial> materialNamed(const SceneParser& parser, const TiXmlElement& element, const std::string& name);
Reference<SceneNodeMesh> meshNamed(const SceneParser& parser, const TiXmlElement& element, const std::string& name);

// An ies_profile or emission_scale element, which names its material by UID
// or by name.
Reference<IESProfile> readIESProfile(const TiXmlElement& element, const std::string& dir);
Reference<EmissionScale> readEmissionScale(const TiXmlElement& element);

// A plain matte material that gives off the light of spectrum.
Reference<DiffuseMaterial> emitterMaterial(const Reference<Spectrum>& spectrum);
// The spectrum in the child spectrum of element, which must be there.
Reference<Spectrum> readChildSpectrum(const TiXmlElement& element);

} // namespace SceneReaders
} // namespace Velorn
