// What several element readers of the scene parser share: names and UIDs,
// transform paths, references by name, emission overrides.
#include "reader/material_parser.h"
#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/string_utils.h"


namespace Velorn
{
namespace SceneReaders
{

using namespace SceneParseUtils;

namespace
{

// The UID in the text of element itself.
UID uidOfText(const TiXmlElement& element) { return UID(parserCall(parseUIntText, element)); }

KeyFrame readKeyFrame(const TiXmlElement& element)
{
	const TiXmlElement& rotation = *getFirstChildElement(element, "rotation_quaternion");
	KeyFrame keyframe;
	keyframe.time = parseDouble(element, "time");
	keyframe.pos = parseVec3(element, "pos");
	keyframe.rotation_axis = parseVec3(rotation, "axis");
	keyframe.rotation_angle = parseDouble(rotation, "angle");
	return keyframe;
}

// A material given by the child material_uid, or else by the child
// material_name.
void readMaterialReference(const TiXmlElement& element, UID& material_uid, String& material_name)
{
	if(element.FirstChildElement("material_uid"))
		material_uid = parseUID(element, "material_uid");
	else
		material_name = parseString(element, "material_name");
}

int32_t measureForText(const TiXmlElement& element, const std::string& text)
{
	for(int32_t measure = EmissionScale::LuminousFlux; measure < EmissionScale::NoMeasure; ++measure)
		if(text == EmissionScale::measureText(measure))
			return measure;
	throw SceneParserExcep("No such measure '" + text + "'" + errorContext(element));
}

} // namespace

void readNameAndUID(const TiXmlElement& element, const String& default_name, SceneNode& node)
{
	node.setName(parseStringWithDefault(element, "name", default_name.str()));
	readUID(element, node);
}

void readUID(const TiXmlElement& element, SceneNode& node)
{
	if(element.FirstChildElement("uid"))
		node.uid = parseUID(element, "uid");
}

UID parseUID(const TiXmlElement& parent, const char* name) { return UID(parseUInt(parent, name)); }

Vector<UID> parseUIDList(const TiXmlElement& list, const char* child_name)
{
	Vector<UID> uids;
	forEachChildElement(list, child_name, [&](const TiXmlElement& child) { uids.push_back(uidOfText(child)); });
	return uids;
}

Vector<KeyFrame> readKeyFrames(const TiXmlElement& element)
{
	Vector<KeyFrame> keyframes;
	forEachChildElement(element, "keyframe", [&](const TiXmlElement& keyframe) { keyframes.push_back(readKeyFrame(keyframe)); });
	return keyframes;
}

Vector<KeyFrame> readTransformPath(const TiXmlElement& element, const char* single_pos)
{
	if(!element.FirstChildElement(single_pos))
		return readKeyFrames(element);
	return Vector<KeyFrame>{keyFrameAt(parseVec3(element, single_pos))};
}

KeyFrame keyFrameAt(const Vec3d& pos) { return KeyFrame{pos, 0, Vec3d(0, 0, 1), 0}; }

const TiXmlElement& oneKindOf(const TiXmlElement& element, const char* const* kinds, const std::string& none_message)
{
	const TiXmlElement* found = nullptr;
	for(const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
	{
		if(!kinds[nameIndex(kinds, child->Value())])
			continue;
		if(found)
			throw SceneParserExcep("Found unexpected element '" + std::string(child->Value()) +
								   ",  already parsed mutually exclusive element '" + found->Value() + "'." +
								   errorContext(element));
		found = child;
	}
	if(!found)
		throw SceneParserExcep(none_message + errorContext(element));
	return *found;
}

Reference<SceneNodeMaterial> materialNamed(const SceneParser& parser, const TiXmlElement& element, const std::string& name)
{
	const Reference<SceneNodeMaterial>* material = parser.names.material_names.find(name);
	if(!material)
		throw SceneParserExcep("Material '" + name + "' is not defined. " + errorContext(element));
	return *material;
}

Reference<SceneNodeMesh> meshNamed(const SceneParser& parser, const TiXmlElement& element, const std::string& name)
{
	const Reference<SceneNodeMesh>* mesh = parser.names.mesh_names.find(name);
	if(!mesh)
		throw SceneParserExcep("Model tried to use undefined mesh '" + name + "'" + errorContext(element));
	return *mesh;
}

Reference<IESProfile> readIESProfile(const TiXmlElement& element, const std::string& dir)
{
	Reference<IESProfile> profile(new IESProfile());
	readMaterialReference(element, profile->material_uid, profile->material_name);
	profile->path = FileUtils::join(dir, parseString(element, "path"));
	return profile;
}

Reference<EmissionScale> readEmissionScale(const TiXmlElement& element)
{
	Reference<EmissionScale> scale(new EmissionScale());
	scale->measure = measureForText(element, parseString(element, "measure"));
	scale->value = parseDouble(element, "value");
	readMaterialReference(element, scale->material_uid, scale->material_name);
	return scale;
}

Reference<DiffuseMaterial> emitterMaterial(const Reference<Spectrum>& spectrum)
{
	Reference<DiffuseMaterial> material(new DiffuseMaterial());
	material->emission = new ConstantWavelengthDependentParam(spectrum);
	return material;
}

Reference<Spectrum> readChildSpectrum(const TiXmlElement& element)
{
	return MaterialParser::parseSpectrum(*getFirstChildElement(element, "spectrum"));
}

} // namespace SceneReaders
} // namespace Velorn
