#include "c4d/base_shader.h"
#include "c4d/document_checks.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include "mesh/mesh.h"
#include "mesh/model_decoder.h"
#include "support/file_utils.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <set>

namespace FileUtils = Velorn::FileUtils;

namespace
{

using Json = DocumentChecks::Json;

struct FreeDocument
{
	void operator()(BaseDocument* doc) const { BaseDocument::Free(doc); }
};

// Builds a document from its JSON form in two passes: the first makes every
// node with its defaults, name, matrix, geometry and data; the second sets
// the parameters, when every name a link may point to is known.
class Reader : DocumentChecks
{
public:
	explicit Reader(const Filename& file_) : DocumentChecks(file_.GetString().GetStdString()) {}

	BaseDocument* read(const Json& root)
	{
		checkKeys(root, "", {"version", "name", "path", "unit", "fps", "time", "camera", "layers", "materials",
			"objects", "render"});
		readVersion(root);
		std::unique_ptr<BaseDocument, FreeDocument> doc(BaseDocument::Alloc());
		// The unit comes first: plug-in nodes read it in their Init.
		readUnit(*doc, root);
		readLayers(*doc, root);
		readMaterials(*doc, root);
		if(const Json* objects = find(root, "objects"))
			readObjects(*doc, *objects, "objects", nullptr, &objectNames);
		readRender(*doc->GetActiveRenderData(), root);
		for(const Pending& p : pending)
		{
			scope = p.scope;
			readParams(*p.node->GetDataInstance(), *p.params, p.place);
		}
		scope = nullptr;
		readSettings(*doc, root);
		return doc.release();
	}

private:
	// A node whose parameters wait for the second pass.
	struct Pending
	{
		BaseList2D* node;
		const Json* params;
		std::string place;
		// The shaders of the material the node belongs to, for its links.
		const std::map<std::string, BaseList2D*>* scope;
	};
	using Names = std::map<std::string, BaseList2D*>;

	// Objects (children and caches), shaders and containers nest at most
	// this deep in all: each level is a call of the reader, and a file nested
	// some thousands deep would run the stack out.
	static constexpr int maxNesting = 256;

	// One level deeper while it lives; a level past maxNesting fails.
	class Nesting
	{
	public:
		Nesting(const Reader& r, const std::string& place) : reader(r)
		{
			if(reader.depth == maxNesting)
				reader.fail(place, "nested deeper than " + std::to_string(maxNesting) + " levels");
			++reader.depth;
		}
		~Nesting() { --reader.depth; }
		Nesting(const Nesting&) = delete;
		Nesting& operator=(const Nesting&) = delete;

	private:
		const Reader& reader;
	};

	void readVersion(const Json& root) const
	{
		const int32_t version = integer(required(root, "", "version"), "version");
		if(version != DocumentTables::formatVersion)
			fail("version", "unsupported version " + std::to_string(version) + "; this host reads version " +
				std::to_string(DocumentTables::formatVersion));
	}

	// The steps every node takes right after it is allocated.
	// names, when given, is where links and references find the node;
	// scope, when given, the shaders its links look at first.
	void begin(BaseList2D& node, const Json& j, const std::string& place, Names* names, const Names* scope = nullptr)
	{
		if(const Json* name = find(j, "name"))
			node.SetName(String(text(*name, member(place, "name"))));
		if(names && node.GetName().Content())
			names->emplace(node.GetName().GetStdString(), &node);
		if(const Json* params = find(j, "params"))
			pending.push_back({&node, &array(*params, member(place, "params")), member(place, "params"), scope});
	}

	// A new node of the type the element names, with its defaults; an
	// unknown type fails.
	template<typename T>
	T* allocate(const Json& j, const std::string& place, const char* kind) const
	{
		const std::string typePlace = member(place, "type");
		const int32_t type = integer(required(j, place, "type"), typePlace);
		T* node = T::Alloc(type);
		if(!node)
			fail(typePlace, "unknown " + std::string(kind) + " type " + std::to_string(type) +
				": neither a type of the host nor a registered plug-in");
		return node;
	}

	void readLayers(BaseDocument& doc, const Json& root)
	{
		const Json* layers = find(root, "layers");
		for(size_t i = 0; layers && i < array(*layers, "layers").size(); ++i)
		{
			const Json& j = (*layers)[i];
			const std::string place = element("layers", i);
			checkKeys(j, place, {"name", "render", "view", "params"});
			LayerObject* layer = LayerObject::Alloc();
			doc.GetLayerObjectRoot()->InsertLast(layer);
			begin(*layer, j, place, &layerNames);
			LayerData data;
			if(const Json* render = find(j, "render"))
				data.render = boolean(*render, member(place, "render"));
			if(const Json* view = find(j, "view"))
				data.view = boolean(*view, member(place, "view"));
			layer->SetLayerData(data);
		}
	}

	void readMaterials(BaseDocument& doc, const Json& root)
	{
		const Json* materials = find(root, "materials");
		BaseMaterial* pred = nullptr;
		for(size_t i = 0; materials && i < array(*materials, "materials").size(); ++i)
		{
			const Json& j = (*materials)[i];
			const std::string place = element("materials", i);
			checkKeys(j, place, {"type", "name", "layer", "active", "params", "shaders"});
			BaseMaterial* mat = allocate<BaseMaterial>(j, place, "material");
			doc.InsertMaterial(mat, pred);
			// A material's links and those of its shaders find its own
			// shaders first, so that two materials may hold shaders of
			// the same name (a copy and its original, say).
			Names& own = materialShaders[mat];
			begin(*mat, j, place, &materialNames, &own);
			if(const Json* layer = find(j, "layer"))
				mat->SetLayerObject(static_cast<LayerObject*>(lookUp(layerNames, "layer", *layer, member(place, "layer"))));
			if(const Json* active = find(j, "active"); active && boolean(*active, member(place, "active")))
				mat->SetBit(BIT_ACTIVE);
			if(const Json* shaders = find(j, "shaders"))
				readShaders(*mat, *shaders, member(place, "shaders"), own);
			pred = mat;
		}
	}

	// The shaders of a material, or the children of a shader, which are the
	// shaders it owns.
	void readShaders(BaseList2D& owner, const Json& list, const std::string& place, Names& own)
	{
		BaseShader* pred = nullptr;
		for(size_t i = 0; i < array(list, place).size(); ++i)
		{
			const Json& j = list[i];
			const std::string at = element(place, i);
			checkKeys(j, at, {"type", "name", "params", "children"});
			const Nesting level(*this, at);
			BaseShader* sh = allocate<BaseShader>(j, at, "shader");
			owner.InsertShader(sh, pred);
			begin(*sh, j, at, &shaderNames, &own);
			if(sh->GetName().Content())
				own.emplace(sh->GetName().GetStdString(), sh);
			if(const Json* children = find(j, "children"))
				readShaders(*sh, *children, member(at, "children"), own);
			pred = sh;
		}
	}

	// Objects of the tree, or of a cache when names is null: objects in
	// caches are no targets of links.
	void readObjects(BaseDocument& doc, const Json& list, const std::string& place, BaseObject* parent,
		Names* names)
	{
		BaseObject* pred = nullptr;
		for(size_t i = 0; i < array(list, place).size(); ++i)
		{
			const std::string at = element(place, i);
			BaseObject* op = newObject(list[i], at);
			doc.InsertObject(op, parent, pred);
			readObject(doc, *op, list[i], at, names);
			pred = op;
		}
	}

	// The object is placed by the caller right away, so that it is freed with
	// the document when a later read fails.
	BaseObject* newObject(const Json& j, const std::string& place) const
	{
		checkKeys(j, place, {"type", "name", "matrix", "render_mode", "editor_mode", "enabled", "layer", "active", "params",
			"tags", "tracks", "cache", "deform_cache", "children", "points", "polygons", "model"});
		return allocate<BaseObject>(j, place, "object");
	}

	void readObject(BaseDocument& doc, BaseObject& op, const Json& j, const std::string& place, Names* names)
	{
		const Nesting level(*this, place);
		begin(op, j, place, names);
		if(const Json* matrix = find(j, "matrix"))
			op.SetMl(readMatrix(*matrix, member(place, "matrix")));
		if(const Json* mode = find(j, "render_mode"))
			op.SetRenderMode(named(DocumentTables::modes, *mode, member(place, "render_mode")));
		if(const Json* mode = find(j, "editor_mode"))
			op.SetEditorMode(named(DocumentTables::modes, *mode, member(place, "editor_mode")));
		if(const Json* enabled = find(j, "enabled"))
			op.SetDeformMode(boolean(*enabled, member(place, "enabled")));
		if(const Json* layer = find(j, "layer"))
			op.SetLayerObject(static_cast<LayerObject*>(lookUp(layerNames, "layer", *layer, member(place, "layer"))));
		readActive(op, j, place);
		readGeometry(op, j, place);
		readTags(op, j, place);
		if(const Json* tracks = find(j, "tracks"))
			readTracks(op.GetTracks(), *tracks, member(place, "tracks"));
		readCache(doc, op, j, place, "cache", &BaseObject::SetCache);
		readCache(doc, op, j, place, "deform_cache", &BaseObject::SetDeformCache);
		if(const Json* children = find(j, "children"))
			readObjects(doc, *children, member(place, "children"), &op, names);
	}

	// A cache the file gives; the object keeps it, and ExecutePasses builds
	// none in its place.
	void readCache(BaseDocument& doc, BaseObject& op, const Json& j, const std::string& place, const char* key,
		void (BaseObject::*set)(BaseObject*))
	{
		const Json* cj = find(j, key);
		if(!cj)
			return;
		const std::string at = member(place, key);
		BaseObject* cache = newObject(*cj, at);
		(op.*set)(cache);
		readObject(doc, *cache, *cj, at, nullptr);
	}

	void readTracks(ObjectTracks& tracks, const Json& j, const std::string& place) const
	{
		checkKeys(j, place, {"position", "rotation", "scale"});
		for(const DocumentTables::Track& t : DocumentTables::tracks)
			if(const Json* keys = find(j, t.name))
				readKeys(tracks.*t.track, *keys, member(place, t.name));
	}

	void readKeys(KeyframeTrack& track, const Json& list, const std::string& place) const
	{
		for(size_t i = 0; i < array(list, place).size(); ++i)
		{
			const Json& j = list[i];
			const std::string at = element(place, i);
			checkKeys(j, at, {"time", "value"});
			const BaseTime t = time(required(j, at, "time"), member(at, "time"));
			if(!track.AppendKey(t, vector(required(j, at, "value"), member(at, "value"))))
				fail(member(at, "time"), "a key must come later than the key before it");
		}
	}

	Matrix readMatrix(const Json& j, const std::string& place) const
	{
		checkKeys(j, place, {"off", "v1", "v2", "v3"});
		Matrix m;
		m.off = vector(required(j, place, "off"), member(place, "off"));
		m.v1 = vector(required(j, place, "v1"), member(place, "v1"));
		m.v2 = vector(required(j, place, "v2"), member(place, "v2"));
		m.v3 = vector(required(j, place, "v3"), member(place, "v3"));
		return m;
	}

	void readTags(BaseObject& op, const Json& j, const std::string& place)
	{
		const Json* tags = find(j, "tags");
		const std::string tagsPlace = member(place, "tags");
		BaseTag* pred = nullptr;
		for(size_t i = 0; tags && i < array(*tags, tagsPlace).size(); ++i)
		{
			const Json& tj = (*tags)[i];
			const std::string tagPlace = element(tagsPlace, i);
			checkKeys(tj, tagPlace, {"type", "name", "active", "params", "uvw", "selection", "matrix"});
			BaseTag* tag = allocate<BaseTag>(tj, tagPlace, "tag");
			op.InsertTag(tag, pred);
			begin(*tag, tj, tagPlace, nullptr);
			readActive(*tag, tj, tagPlace);
			readTagData(*tag, tj, tagPlace);
			pred = tag;
		}
	}

	// Whether the node is selected in its manager (BIT_ACTIVE).
	void readActive(BaseList2D& node, const Json& j, const std::string& place) const
	{
		if(const Json* active = find(j, "active"); active && boolean(*active, member(place, "active")))
			node.SetBit(BIT_ACTIVE);
	}

	// The data of a UVW, selection or texture tag.
	void readTagData(BaseTag& tag, const Json& j, const std::string& place) const
	{
		const char* key = DocumentTables::tagDataKey(tag.GetType());
		for(const DocumentTables::Name& entry : DocumentTables::tagData)
			if(find(j, entry.name) && !(key && std::strcmp(key, entry.name) == 0))
				fail(place, std::string(entry.name) + " is only for tags of type " + typesWithData(entry.name));
		const Json* data = key ? find(j, key) : nullptr;
		if(!data)
			return;
		const std::string at = member(place, key);
		if(tag.GetType() == Tuvw)
			readUVW(static_cast<UVWTag&>(tag), *data, at);
		else if(tag.GetType() == Ttexture)
			static_cast<TextureTag&>(tag).SetMl(readMatrix(*data, at));
		else
			readSelection(*static_cast<SelectionTag&>(tag).GetBaseSelect(), *data, at);
	}

	// The tag types whose data is under key, as "5673 or 5674".
	static std::string typesWithData(const char* key)
	{
		std::string types;
		for(const DocumentTables::Name& entry : DocumentTables::tagData)
			if(std::strcmp(entry.name, key) == 0)
				types += (types.empty() ? "" : " or ") + std::to_string(entry.value);
		return types;
	}

	// One record of four [u, v] pairs per polygon.
	void readUVW(UVWTag& tag, const Json& list, const std::string& place) const
	{
		tag.Resize((int32_t)array(list, place).size());
		for(size_t i = 0; i < list.size(); ++i)
		{
			const std::string at = element(place, i);
			if(!list[i].is_array() || list[i].size() != 4)
				fail(at, "expected four [u, v] pairs");
			Vector corners[4];
			for(size_t k = 0; k < 4; ++k)
				corners[k] = uvPair(list[i][k], element(at, k));
			tag.Set((int32_t)i, UVWStruct{corners[0], corners[1], corners[2], corners[3]});
		}
	}

	Vector uvPair(const Json& j, const std::string& place) const
	{
		if(!j.is_array() || j.size() != 2)
			fail(place, "expected [u, v]");
		return Vector(number(j[0], element(place, 0)), number(j[1], element(place, 1)), 0);
	}

	// Indices and [min, max] ranges, both inclusive.
	void readSelection(BaseSelect& selection, const Json& list, const std::string& place) const
	{
		for(size_t i = 0; i < array(list, place).size(); ++i)
		{
			const Json& j = list[i];
			const std::string at = element(place, i);
			const bool range = j.is_array() && j.size() == 2;
			if(!range && !j.is_number_integer())
				fail(at, "expected an index or [min, max]");
			const int32_t min = integer(range ? j[0] : j, range ? element(at, 0) : at);
			const int32_t max = range ? integer(j[1], element(at, 1)) : min;
			if(min < 0)
				fail(at, "the index " + std::to_string(min) + " is negative");
			if(min > max)
				fail(at, "the range [" + std::to_string(min) + ", " + std::to_string(max) + "] ends before it starts");
			selection.SelectAll(min, max);
		}
	}

	void readGeometry(BaseObject& op, const Json& j, const std::string& place) const
	{
		const Json* model = find(j, "model");
		const bool hasInline = find(j, "points") || find(j, "polygons");
		if(!model && !hasInline)
			return;
		if(op.GetType() != Opolygon)
			fail(place, "points, polygons and model are only for polygon objects (type " + std::to_string(Opolygon) +
				")");
		if(model && hasInline)
			fail(place, "a polygon object has either a model or points and polygons, not both");
		PolygonObject& poly = static_cast<PolygonObject&>(op);
		if(model)
			readModel(poly, *model, member(place, "model"));
		else
			readInlineGeometry(poly, j, place);
	}

	void readInlineGeometry(PolygonObject& poly, const Json& j, const std::string& place) const
	{
		static const Json none = Json::array();
		const Json* pj = find(j, "points");
		const Json* vj = find(j, "polygons");
		const Json& points = array(pj ? *pj : none, member(place, "points"));
		const Json& polygons = array(vj ? *vj : none, member(place, "polygons"));
		poly.ResizeObject((int32_t)points.size(), (int32_t)polygons.size());
		for(size_t i = 0; i < points.size(); ++i)
			poly.GetPointW()[i] = vector(points[i], element(member(place, "points"), i));
		for(size_t i = 0; i < polygons.size(); ++i)
			poly.GetPolygonW()[i] = polygon(polygons[i], element(member(place, "polygons"), i), points.size());
	}

	CPolygon polygon(const Json& j, const std::string& place, size_t pointCount) const
	{
		if(!j.is_array() || j.size() < 3 || j.size() > 4)
			fail(place, "expected an array of three or four point indices");
		int32_t corners[4];
		for(size_t i = 0; i < j.size(); ++i)
		{
			corners[i] = integer(j[i], element(place, i));
			if(corners[i] < 0 || (size_t)corners[i] >= pointCount)
				fail(element(place, i), "point index " + std::to_string(corners[i]) + " is out of range (" +
					std::to_string(pointCount) + " points)");
		}
		return j.size() == 3 ? CPolygon(corners[0], corners[1], corners[2])
			: CPolygon(corners[0], corners[1], corners[2], corners[3]);
	}

	// A model file named relative to the document file's directory.
	void readModel(PolygonObject& poly, const Json& j, const std::string& place) const
	{
		const std::string path = FileUtils::join(FileUtils::getDirectory(fileName()), text(j, place));
		if(!FileUtils::fileExists(path))
			fail(place, "no model file '" + path + "'");
		Velorn::Mesh mesh;
		try
		{
			Velorn::loadModel(path, mesh, 1.0f);
		}
		catch(const Velorn::MessageException& e)
		{
			fail(place, "cannot read model file '" + path + "': " + e.what());
		}
		fillFromMesh(poly, mesh);
	}

	// Triangles come first, then quads, as the mesh keeps them. Corners at
	// one position become one point, as they were one point of the file (the
	// OBJ decoder gives every corner a vertex of its own), so that a Phong
	// tag smooths across the polygons.
	static void fillFromMesh(PolygonObject& poly, const Velorn::Mesh& mesh)
	{
		std::vector<Vector> points;
		std::vector<int32_t> point_of(mesh.verts.size());
		std::map<std::array<uint32_t, 3>, int32_t> at_position;
		for(size_t i = 0; i < mesh.verts.size(); ++i)
		{
			const Velorn::Vec3f& v = mesh.verts[i];
			const auto found = at_position.emplace(positionKey(v), (int32_t)points.size());
			if(found.second)
				points.push_back(Vector(v.x, v.y, v.z));
			point_of[i] = found.first->second;
		}
		const size_t triangles = mesh.triangles.size();
		poly.ResizeObject((int32_t)points.size(), (int32_t)(triangles + mesh.quads.size()));
		std::copy(points.begin(), points.end(), poly.GetPointW());
		for(size_t i = 0; i < triangles; ++i)
		{
			const uint32_t* v = mesh.triangles[i].vertex_indices;
			poly.GetPolygonW()[i] = CPolygon(point_of[v[0]], point_of[v[1]], point_of[v[2]]);
		}
		for(size_t i = 0; i < mesh.quads.size(); ++i)
		{
			const uint32_t* v = mesh.quads[i].vertex_indices;
			poly.GetPolygonW()[triangles + i] = CPolygon(point_of[v[0]], point_of[v[1]], point_of[v[2]], point_of[v[3]]);
		}
	}

	// The bits of a position, with -0 taken as 0, so that equal positions
	// meet.
	static std::array<uint32_t, 3> positionKey(const Velorn::Vec3f& v)
	{
		std::array<uint32_t, 3> key;
		const float coordinates[3] = {v.x + 0.0f, v.y + 0.0f, v.z + 0.0f};
		std::memcpy(key.data(), coordinates, sizeof(coordinates));
		return key;
	}

	void readRender(RenderData& rd, const Json& root)
	{
		static const Json none = Json::object();
		const Json* render = find(root, "render");
		const Json& j = render ? *render : none;
		checkKeys(j, "render", {"name", "params", "videoposts"});
		begin(rd, j, "render", nullptr);
		const Json* posts = find(j, "videoposts");
		for(size_t i = 0; posts && i < array(*posts, "render.videoposts").size(); ++i)
		{
			const Json& pj = (*posts)[i];
			const std::string place = element("render.videoposts", i);
			checkKeys(pj, place, {"type", "name", "enabled", "params"});
			BaseVideoPost* post = allocate<BaseVideoPost>(pj, place, "video post");
			rd.InsertVideoPostLast(post);
			begin(*post, pj, place, nullptr);
			const Json* enabled = find(pj, "enabled");
			if(enabled && !boolean(*enabled, member(place, "enabled")))
				post->SetInfo(post->GetInfo() | VIDEOPOST_DISABLED);
		}
	}

	void readUnit(BaseDocument& doc, const Json& root) const
	{
		const Json* unit = find(root, "unit");
		doc.SetUnit(unit ? named(DocumentTables::units, *unit, "unit") : DOCUMENT_UNIT_CM);
	}

	void readSettings(BaseDocument& doc, const Json& root) const
	{
		if(const Json* fps = find(root, "fps"))
		{
			const int32_t rate = integer(*fps, "fps");
			if(rate < 1)
				fail("fps", "the frame rate must be at least 1");
			doc.SetFps(rate);
		}
		if(const Json* t = find(root, "time"))
			doc.SetTime(time(*t, "time"));
		if(const Json* camera = find(root, "camera"))
			doc.SetActiveCamera(static_cast<BaseObject*>(lookUp(objectNames, "object", *camera, "camera")));
		const Json* path = find(root, "path");
		const Json* name = find(root, "name");
		doc.SetDocumentPath(path ? Filename(String(text(*path, "path"))) : Filename(String(fileName())).GetDirectory());
		doc.SetDocumentName(name ? Filename(String(text(*name, "name"))) : Filename(String(fileName())).GetFile());
	}

	BaseList2D* lookUp(const Names& names, const char* kind, const Json& j, const std::string& place) const
	{
		const std::string name = text(j, place);
		const auto found = names.find(name);
		if(found == names.end())
			fail(place, std::string("no ") + kind + " named '" + name + "'");
		return found->second;
	}

	// The shaders of the node's own material first, then objects,
	// materials, shaders and layers, as the first of the name.
	BaseList2D* linkTarget(const Json& j, const std::string& place) const
	{
		if(j.is_null())
			return nullptr;
		const std::string name = text(j, place);
		static const Names none;
		for(const Names* names : {scope ? scope : &none, &objectNames, &materialNames, &shaderNames, &layerNames})
		{
			const auto found = names->find(name);
			if(found != names->end())
				return found->second;
		}
		fail(place, "the link names '" + name + "', but there is no object, material, shader or layer of that name");
	}

	void readParams(BaseContainer& bc, const Json& list, const std::string& place) const
	{
		std::set<int32_t> seen;
		for(size_t i = 0; i < array(list, place).size(); ++i)
		{
			const Json& j = list[i];
			const std::string at = element(place, i);
			checkKeys(j, at, {"id", "type", "value"});
			const int32_t id = integer(required(j, at, "id"), member(at, "id"));
			if(!seen.insert(id).second)
				fail(member(at, "id"), "parameter " + std::to_string(id) + " is given twice");
			bc.SetData(id, param(j, at));
		}
	}

	// A parameter type that has a value, and how the value is read.
	struct ParamType
	{
		const char* name;
		GeData (*read)(const Reader&, const Json&, const std::string&);
	};

	GeData param(const Json& j, const std::string& place) const
	{
		static constexpr ParamType paramTypes[] = {
			{"bool", [](const Reader& r, const Json& v, const std::string& at) { return GeData((int32_t)r.boolean(v, at)); }},
			{"long", [](const Reader& r, const Json& v, const std::string& at) { return GeData(r.integer(v, at)); }},
			{"real", [](const Reader& r, const Json& v, const std::string& at) { return GeData(r.number(v, at)); }},
			{"vector", [](const Reader& r, const Json& v, const std::string& at) { return GeData(r.vector(v, at)); }},
			{"string", [](const Reader& r, const Json& v, const std::string& at) { return GeData(String(r.text(v, at))); }},
			{"filename",
				[](const Reader& r, const Json& v, const std::string& at) { return GeData(Filename(String(r.text(v, at)))); }},
			{"time", [](const Reader& r, const Json& v, const std::string& at) { return GeData(r.time(v, at)); }},
			{"link", [](const Reader& r, const Json& v, const std::string& at) { return GeData(r.linkTarget(v, at)); }},
			{"container", [](const Reader& r, const Json& v, const std::string& at) { return GeData(r.container(v, at)); }},
		};
		const std::string kind = text(required(j, place, "type"), member(place, "type"));
		if(kind == "none")
		{
			if(find(j, "value"))
				fail(member(place, "value"), "a parameter of type none has no value");
			return GeData();
		}
		const Json& v = required(j, place, "value");
		const std::string at = member(place, "value");
		for(const ParamType& t : paramTypes)
			if(kind == t.name)
				return t.read(*this, v, at);
		std::string choices;
		for(const ParamType& t : paramTypes)
			choices += std::string(t.name) + ", ";
		fail(member(place, "type"), "unknown parameter type '" + kind + "' (one of " + choices + "none)");
	}

	BaseContainer container(const Json& j, const std::string& place) const
	{
		checkKeys(j, place, {"id", "params"});
		const Nesting level(*this, place);
		BaseContainer bc(integer(required(j, place, "id"), member(place, "id")));
		readParams(bc, required(j, place, "params"), member(place, "params"));
		return bc;
	}

	std::vector<Pending> pending;
	Names objectNames, materialNames, shaderNames, layerNames;
	std::map<const BaseMaterial*, Names> materialShaders;
	// The scope of the node whose parameters are being read.
	const Names* scope = nullptr;
	// The levels of Nesting being read.
	mutable int depth = 0;
};

} // namespace

BaseDocument* ReadDocumentText(const std::string& text, const Filename& file)
{
	return Reader(file).read(DocumentChecks::parse(text, file.GetString().GetStdString()));
}

BaseDocument* LoadDocumentFile(const Filename& file)
{
	std::string text;
	FileUtils::readEntireFile(file.GetString().GetStdString(), text);
	return ReadDocumentText(text, file);
}
