// The compact forms of old scene files, in which one element stood for a
// material, sometimes a mesh, and a model that uses them: exit portals,
// mesh lights and rectangle lights.
#include "reader/material_parser.h"
#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "scene/rotation.h"
#include "scene/scene_node_model.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <algorithm>

namespace Velorn
{
namespace SceneReaders
{

using namespace SceneParseUtils;

namespace
{

Reference<SceneNodeMaterial> namedMaterialNode(SceneParser& parser, const Reference<Material>& material, const String& name)
{
	Reference<SceneNodeMaterial> node(new SceneNodeMaterial(material));
	node->setName(name);
	parser.names.material_names.insert(name, node);
	return node;
}

// A model of the mesh whose every material slot holds material. A mesh that
// is not loaded yet is taken to have one slot.
Reference<SceneNodeModel> modelOf(const String& name, const Reference<SceneNodeMesh>& mesh,
	const Reference<SceneNodeMaterial>& material)
{
	const size_t slots = mesh->mesh.nonNull() ? std::max<size_t>(1, mesh->mesh->num_materials_referenced) : 1;
	Reference<SceneNodeModel> model(new SceneNodeModel());
	model->setName(name);
	model->setGeometry(mesh);
	model->setMaterials(Vector<Reference<SceneNodeMaterial>>(slots, material));
	model->rotation = new MatrixRotation();
	return model;
}

// pos, rotation and scale of exit_portal and meshlight.
void readPlacement(const TiXmlElement& element, SceneNodeModel& model)
{
	model.keyframes.push_back(keyFrameAt(parseVec3(element, "pos")));
	model.rotation = parseRotationWithDefault(element, "rotation");
	model.scale = parseDoubleWithDefault(element, "scale", 1);
}

// efficacy_scale gives the light's flux as a luminous efficacy (lumen per
// watt) times the power it draws (watt).
void readEfficacyScale(const TiXmlElement& element, SceneNodeModel& model, const Reference<SceneNodeMaterial>& material)
{
	const TiXmlElement* efficacy = element.FirstChildElement("efficacy_scale");
	if(!efficacy)
		return;
	Reference<EmissionScale> scale(new EmissionScale());
	scale->measure = EmissionScale::LuminousFlux;
	scale->value = parseDouble(*efficacy, "overall_luminous_efficacy") * parseDouble(*efficacy, "power_drawn");
	scale->material = material;
	model.emission_scales.push_back(scale);
}

// The light of a mesh light, its spectrum modulated by the texture when
// there is one.
Reference<DiffuseMaterial> meshLightMaterial(const TiXmlElement& element, const std::string& dir)
{
	Reference<DiffuseMaterial> material = emitterMaterial(readChildSpectrum(element));
	if(const TiXmlElement* texture = element.FirstChildElement("texture"))
	{
		material->textures.push_back(MaterialParser::parseTexture(*texture, dir));
		material->base_emission = material->emission;
		material->emission = new TextureWavelengthDependentParam(0);
	}
	return material;
}

void readMeshLightProfile(const TiXmlElement& element, const std::string& dir, SceneNodeModel& model,
	const Reference<SceneNodeMaterial>& material)
{
	const TiXmlElement* ies = element.FirstChildElement("ies_profile");
	if(!ies)
		return;
	Reference<IESProfile> profile(new IESProfile());
	profile->path = FileUtils::join(dir, parseString(*ies, "path"));
	profile->material = material;
	model.ies_profiles.push_back(profile);
}

// One quad of width by height about centre in the plane z = centre.z,
// facing down (towards -z), of the material "default": its corners run
// clockwise seen from below, as a scene's polygons do seen from their front.
Reference<Mesh> rectangleMesh(const Vec3d& centre, double width, double height)
{
	const float x0 = (float)(centre.x - width / 2), x1 = (float)(centre.x + width / 2);
	const float y0 = (float)(centre.y - height / 2), y1 = (float)(centre.y + height / 2);
	const float z = (float)centre.z;
	Reference<Mesh> mesh(new Mesh());
	mesh->addMaterialUsed("default");
	mesh->addVertex(Vec3f{x0, y0, z});
	mesh->addVertex(Vec3f{x0, y1, z});
	mesh->addVertex(Vec3f{x1, y1, z});
	mesh->addVertex(Vec3f{x1, y0, z});
	mesh->addQuad({0, 3, 2, 1}, {0, 0, 0, 0}, 0);
	mesh->endOfModel();
	return mesh;
}

} // namespace

Vector<Reference<SceneNode>> readExitPortal(SceneParser& parser, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"mesh_name", "rotation", "scale", "pos", nullptr};
	checkForUnexpectedElements(element, allowed);
	const Reference<SceneNodeMesh> mesh = meshNamed(parser, element, parseString(element, "mesh_name"));
	const Reference<SceneNodeMaterial> material = namedMaterialNode(parser, new ExitPortalMaterial(), "Exit Portal Material");
	const Reference<SceneNodeModel> model = modelOf("Exit Portal Object", mesh, material);
	readPlacement(element, *model);
	return Vector<Reference<SceneNode>>{material, model};
}

Vector<Reference<SceneNode>> readMeshLight(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"pos", "rotation", "mesh_name", "scale", "spectrum", "efficacy_scale",
		"ies_profile", "texture", nullptr};
	checkForUnexpectedElements(element, allowed);
	const Reference<SceneNodeMesh> mesh = meshNamed(parser, element, parseString(element, "mesh_name"));
	if(mesh->mesh.isNull())
		throw SceneParserExcep("Invalid mesh when parsing meshlight." + errorContext(element));
	const Reference<SceneNodeMaterial> material =
		namedMaterialNode(parser, meshLightMaterial(element, dir), "Mesh Light Material");
	const Reference<SceneNodeModel> model = modelOf("Mesh Light Object", mesh, material);
	readPlacement(element, *model);
	readEfficacyScale(element, *model, material);
	readMeshLightProfile(element, dir, *model, material);
	return Vector<Reference<SceneNode>>{material, model};
}

Vector<Reference<SceneNode>> readRectangleLight(SceneParser& parser, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"pos", "width", "height", "layer", "spectrum", "efficacy_scale", nullptr};
	checkForUnexpectedElements(element, allowed);
	const std::string number = toString((int32_t)parser.next_light_number);
	const Vec3d pos = parseVec3(element, "pos");
	const double width = parseDouble(element, "width");
	const double height = parseDouble(element, "height");

	Reference<DiffuseMaterial> light = emitterMaterial(readChildSpectrum(element));
	light->layer = (unsigned)parseIntWithDefault(element, "layer", 0);
	const Reference<SceneNodeMaterial> material = namedMaterialNode(parser, light, "Rectangle Light Material " + number);

	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->setName("Rectangle Light Mesh " + number);
	mesh->setMesh(rectangleMesh(pos, width, height));
	parser.names.mesh_names.insert(mesh->getName(), mesh);

	// The quad stands where it shines; its model stays at the origin.
	const Reference<SceneNodeModel> model = modelOf(String("Rectangle Light Object " + number), mesh, material);
	model->keyframes.push_back(keyFrameAt(Vec3d()));
	readEfficacyScale(element, *model, material);
	++parser.next_light_number;
	return Vector<Reference<SceneNode>>{material, mesh, model};
}

} // namespace SceneReaders
} // namespace Velorn
