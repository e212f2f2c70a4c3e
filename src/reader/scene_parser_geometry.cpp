// Geometry elements: meshes, models (model2 and the old model), spheres,
// parametric surfaces and scatters.
#include "reader/scene_parse_utils.h"
#include "reader/scene_parser_readers.h"
#include "scene/rotation.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_scatter.h"
#include "scene/scene_node_sphere.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

namespace Velorn
{
namespace SceneReaders
{

using namespace SceneParseUtils;

namespace
{

// view_dependent_subdivision stands first, so that the rest of the list names
// the elements that may stand only once: the writer puts that one in twice,
// and the first counts.
const char* const mesh_elements[] = {"view_dependent_subdivision", "name", "uid", "max_num_subdivisions",
	"subdivide_pixel_threshold", "subdivide_curvature_threshold", "displacement_error_threshold", "subdivision_smoothing",
	"normal_smoothing", "merge_vertices_with_same_pos_and_normal", "wrap_u", "wrap_v", "scale", "embedded", "embedded_2",
	"external", nullptr};

struct EmbeddedForm
{
	const char* element;
	const char* parser_name; // of the decoder that once read it, which starts its messages
};

// Meshes held inline in the scene file, in forms that no reader of this
// library decodes.
const EmbeddedForm embedded_forms[] = {
	{"embedded", "VelornModelParserExcep: "},
	{"embedded_2", "VelornModelParser2Excep: "},
};

void readSubdivision(const TiXmlElement& element, SceneNodeMesh& mesh)
{
	mesh.max_num_subdivisions = parseIntWithDefault(element, "max_num_subdivisions", 0);
	mesh.subdivide_pixel_threshold = parseDoubleWithDefault(element, "subdivide_pixel_threshold", 0);
	mesh.subdivide_curvature_threshold = parseDoubleWithDefault(element, "subdivide_curvature_threshold", 0);
	mesh.displacement_error_threshold = parseDoubleWithDefault(element, "displacement_error_threshold", 0);
	mesh.view_dependent_subdivision = parseBoolWithDefault(element, "view_dependent_subdivision", false);
	mesh.subdivision_smoothing = parseBoolWithDefault(element, "subdivision_smoothing", true);
	mesh.normal_smoothing = parseBool(element, "normal_smoothing");
	mesh.merge_vertices_with_same_pos_and_normal = parseBoolWithDefault(element, "merge_vertices_with_same_pos_and_normal", true);
	mesh.wrap_u = parseBoolWithDefault(element, "wrap_u", false);
	mesh.wrap_v = parseBoolWithDefault(element, "wrap_v", false);
}

// The file of the mesh, which finalise loads.
std::string readMeshPath(const TiXmlElement& element, const std::string& dir)
{
	for(const EmbeddedForm& form : embedded_forms)
		if(const TiXmlElement* embedded = element.FirstChildElement(form.element))
			throw SceneParserExcep(std::string("Error while loading mesh: ") + form.parser_name +
								   "embedded mesh data is not supported" + errorContext(*embedded));
	const TiXmlElement* external = element.FirstChildElement("external");
	if(!external)
		throw SceneParserExcep("Mesh not created. (missing 'embedded', 'embedded_2' or 'external' element) " + errorContext(element));
	return FileUtils::join(dir, parseString(*external, "path"));
}

// rotation, scale and invisible_to_camera, as model and model2 hold them.
void readPlacement(const TiXmlElement& element, SceneNodeModel& model)
{
	model.rotation = parseRotationWithDefault(element, "rotation");
	model.scale = parseDoubleWithDefault(element, "scale", 1);
	model.invisible_to_camera = parseBoolWithDefault(element, "invisible_to_camera", false);
}

void readEmissionOverrides(const TiXmlElement& element, const std::string& dir, SceneNodeModel& model)
{
	forEachChildElement(element, "ies_profile",
		[&](const TiXmlElement& profile) { model.ies_profiles.push_back(readIESProfile(profile, dir)); });
	forEachChildElement(element, "emission_scale",
		[&](const TiXmlElement& scale) { model.emission_scales.push_back(readEmissionScale(scale)); });
}

// The old model names no materials: it takes, for each material name that
// the mesh uses, the material node of that name. So it needs the mesh's
// content while the file is read, and loads the mesh as finalise would,
// which then leaves it loaded.
Vector<Reference<SceneNodeMaterial>> materialsByMeshNames(const SceneParser& parser, const TiXmlElement& element,
	SceneNodeMesh& mesh)
{
	VisitOperation load(VisitOperation::Load, "", "");
	mesh.doVisit(load);
	Vector<Reference<SceneNodeMaterial>> materials;
	for(const String& material_name : mesh.mesh->used_materials)
	{
		try
		{
			materials.push_back(materialNamed(parser, element, material_name.str()));
		}
		catch(const SceneParserExcep& e)
		{
			throw SceneParserExcep("Error while binding material '" + material_name.str() + "' to geometry '" +
								   mesh.getName().str() + "': " + e.what());
		}
	}
	return materials;
}

// The program of a surface or a scatter: <shader><shader>text</shader></shader>.
std::string readShaderProgram(const TiXmlElement& element)
{
	return parseString(*getFirstChildElement(element, "shader"), "shader");
}

} // namespace

Reference<SceneNode> readMesh(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	checkForUnexpectedElements(element, mesh_elements);
	checkForDuplicateElements(element, mesh_elements + 1);
	const String name = parseString(element, "name");
	if(parser.names.mesh_names.contains(name))
		throw SceneParserExcep("Mesh with name '" + name.str() + "' already defined; mesh names must be unique. " +
							   errorContext(element));
	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->setName(name);
	readUID(element, *mesh);
	readSubdivision(element, *mesh);
	mesh->path = readMeshPath(element, dir);
	mesh->scale = parseDoubleWithDefault(element, "scale", 1);
	parser.names.mesh_names.insert(name, mesh);
	return mesh;
}

Reference<SceneNode> readModel2(SceneParser&, const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"name", "uid", "keyframe", "rotation", "scale", "invisible_to_camera",
		"ies_profile", "emission_scale", "geometry_uid", "materials", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeModel> model(new SceneNodeModel());
	readNameAndUID(element, "Object", *model);
	model->keyframes = readKeyFrames(element);
	readPlacement(element, *model);
	readEmissionOverrides(element, dir, *model);
	model->geometry_uid = parseUID(element, "geometry_uid");
	model->material_uids = parseUIDList(*getFirstChildElement(element, "materials"), "material_uid");
	return model;
}

Reference<SceneNode> readOldModel(SceneParser& parser, const TiXmlElement& element, const std::string& dir)
{
	static const char* const allowed[] = {"name", "uid", "pos", "keyframe", "rotation", "scale", "invisible_to_camera",
		"mesh_name", "ies_profile", "emission_scale", "end_pos", "final_rotation", nullptr};
	checkForUnexpectedElements(element, allowed);
	const std::string mesh_name = parseString(element, "mesh_name");
	const Reference<SceneNodeMesh> mesh = meshNamed(parser, element, mesh_name);
	Reference<SceneNodeModel> model(new SceneNodeModel());
	readNameAndUID(element, mesh_name + " instance", *model);
	model->keyframes = readTransformPath(element, "pos");
	readPlacement(element, *model);
	readEmissionOverrides(element, dir, *model);
	model->materials = materialsByMeshNames(parser, element, *mesh);
	// The reference alone: a geometry_uid copied from the mesh would take
	// the UID offset of an include a second time.
	model->geometry = mesh;
	return model;
}

Reference<SceneNode> readSphere(SceneParser& parser, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "material_uid", "material_name", "center", "keyframe", "radius",
		"center_end", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeSphere> sphere(new SceneNodeSphere());
	readNameAndUID(element, "Sphere", *sphere);
	if(element.FirstChildElement("material_uid"))
		sphere->material_uid = parseUID(element, "material_uid");
	else
		sphere->material = materialNamed(parser, element, parseString(element, "material_name"));
	sphere->keyframes = readTransformPath(element, "center");
	sphere->radius = parseDouble(element, "radius");
	return sphere;
}

Reference<SceneNode> readParametricSurface(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "shader", "num_u", "num_v", "num_surfaces", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeParametricSurface> surface(new SceneNodeParametricSurface());
	readNameAndUID(element, surface->getName(), *surface);
	surface->shader = readShaderProgram(element);
	surface->num_u = parseInt(element, "num_u");
	surface->num_v = parseInt(element, "num_v");
	return surface;
}

Reference<SceneNode> readScatter(SceneParser&, const TiXmlElement& element, const std::string&)
{
	static const char* const allowed[] = {"name", "uid", "shader", "geometry_uid", "materials", "target_object_uid",
		"density", "seed", "view_culling", nullptr};
	checkForUnexpectedElements(element, allowed);
	Reference<SceneNodeScatter> scatter(new SceneNodeScatter());
	readNameAndUID(element, scatter->getName(), *scatter);
	scatter->shader = readShaderProgram(element);
	scatter->density = parseDouble(element, "density");
	// Written as a signed number; the bits are the seed.
	scatter->seed = (uint32_t)parseInt(element, "seed");
	scatter->geometry_uid = parseUID(element, "geometry_uid");
	scatter->material_uids = parseUIDList(*getFirstChildElement(element, "materials"), "material_uid");
	scatter->target_object_uid = parseUID(element, "target_object_uid");
	return scatter;
}

} // namespace SceneReaders
} // namespace Velorn
