#include "c4d/base_shader.h"
#include "c4d/document_file.h"
#include "c4d/document_tables.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include "support/file_utils.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace
{

using Json = nlohmann::ordered_json;

template<size_t N>
const char* nameOf(const DocumentTables::Name (&table)[N], int32_t value)
{
	for(const DocumentTables::Name& entry : table)
		if(entry.value == value)
			return entry.name;
	return table[0].name;
}

Json vector(const Vector& v)
{
	return Json::array({v.x, v.y, v.z});
}

Json time(const BaseTime& t)
{
	return Json::array({t.GetNumerator(), t.GetDenominator()});
}

Json params(const BaseContainer& bc);

Json value(const GeData& data)
{
	switch(data.GetType())
	{
	case DA_LONG: return data.GetInt32();
	case DA_REAL: return data.GetFloat();
	case DA_TIME: return time(data.GetTime());
	case DA_VECTOR: return vector(data.GetVector());
	case DA_STRING: return data.GetString().GetStdString();
	case DA_FILENAME: return data.GetFilename().GetString().GetStdString();
	case DA_CONTAINER: return Json{{"id", data.GetContainer()->GetId()}, {"params", params(*data.GetContainer())}};
	case DA_ALIASLINK: return data.GetLink() ? Json(data.GetLink()->GetName().GetStdString()) : Json();
	}
	return Json();
}

Json params(const BaseContainer& bc)
{
	Json list = Json::array();
	for(const BaseContainer::Entry& entry : bc)
	{
		Json p{{"id", entry.first}, {"type", nameOf(DocumentTables::paramTypes, entry.second.GetType())}};
		if(entry.second.GetType() != DA_NIL)
			p["value"] = value(entry.second);
		list.push_back(std::move(p));
	}
	return list;
}

// The fields every node has: its type when the kind has several, and its name.
Json node(const BaseList2D& n, bool withType)
{
	Json j = Json::object();
	if(withType)
		j["type"] = n.GetType();
	j["name"] = n.GetName().GetStdString();
	return j;
}

void addParams(Json& j, const BaseList2D& n)
{
	if(n.GetDataInstance()->GetCount() > 0)
		j["params"] = params(*n.GetDataInstance());
}

Json matrix(const Matrix& m)
{
	return Json{{"off", vector(m.off)}, {"v1", vector(m.v1)}, {"v2", vector(m.v2)}, {"v3", vector(m.v3)}};
}

void addGeometry(Json& j, const PolygonObject& poly)
{
	Json points = Json::array();
	for(int32_t i = 0; i < poly.GetPointCount(); ++i)
		points.push_back(vector(poly.GetPointR()[i]));
	Json polygons = Json::array();
	for(int32_t i = 0; i < poly.GetPolygonCount(); ++i)
	{
		const CPolygon& p = poly.GetPolygonR()[i];
		polygons.push_back(p.IsTriangle() ? Json::array({p.a, p.b, p.c}) : Json::array({p.a, p.b, p.c, p.d}));
	}
	j["points"] = std::move(points);
	j["polygons"] = std::move(polygons);
}

// The nodes from first on, each as each gives it.
template<typename T, typename Each>
Json list(const T* first, Each each)
{
	Json nodes = Json::array();
	for(const T* n = first; n; n = n->GetNext())
		nodes.push_back(each(*n));
	return nodes;
}

Json uvw(const UVWTag& tag)
{
	Json records = Json::array();
	for(int32_t i = 0; i < tag.GetDataCount(); ++i)
	{
		Json record = Json::array();
		const UVWStruct& r = tag.Get(i);
		for(const Vector* corner : {&r.a, &r.b, &r.c, &r.d})
			record.push_back(Json::array({corner->x, corner->y}));
		records.push_back(std::move(record));
	}
	return records;
}

// Single indices as numbers, longer ranges as [min, max].
Json selection(const BaseSelect& sel)
{
	Json ranges = Json::array();
	int32_t min = 0, max = 0;
	for(int32_t seg = 0; sel.GetRange(seg, std::numeric_limits<int32_t>::max(), &min, &max); ++seg)
		ranges.push_back(min == max ? Json(min) : Json::array({min, max}));
	return ranges;
}

void addTagData(Json& j, const BaseTag& tag)
{
	const char* key = DocumentTables::tagDataKey(tag.GetType());
	if(tag.GetType() == Tuvw)
		j[key] = uvw(static_cast<const UVWTag&>(tag));
	else if(tag.GetType() == Ttexture)
	{
		const Matrix& m = static_cast<const TextureTag&>(tag).GetMl();
		if(m != Matrix())
			j[key] = matrix(m);
	}
	else if(tag.GetType() == Tpolygonselection || tag.GetType() == Tpointselection)
		j[key] = selection(*static_cast<const SelectionTag&>(tag).GetBaseSelect());
}

Json tag(const BaseTag& t)
{
	Json j = node(t, true);
	if(t.GetBit(BIT_ACTIVE))
		j["active"] = true;
	addParams(j, t);
	addTagData(j, t);
	return j;
}

Json shader(const BaseShader& sh)
{
	Json j = node(sh, true);
	addParams(j, sh);
	if(sh.GetDown())
		j["children"] = list(sh.GetDown(), shader);
	return j;
}

Json material(const BaseMaterial& mat, BaseDocument& doc)
{
	Json j = node(mat, true);
	if(const LayerObject* layer = mat.GetLayerObject(&doc))
		j["layer"] = layer->GetName().GetStdString();
	if(mat.GetBit(BIT_ACTIVE))
		j["active"] = true;
	addParams(j, mat);
	if(mat.GetFirstShader())
		j["shaders"] = list(mat.GetFirstShader(), shader);
	return j;
}

Json keys(const KeyframeTrack& track)
{
	Json out = Json::array();
	for(const Keyframe& key : track.GetKeys())
		out.push_back(Json{{"time", time(key.time)}, {"value", vector(key.value)}});
	return out;
}

Json tracks(const ObjectTracks& all)
{
	Json j = Json::object();
	for(const DocumentTables::Track& t : DocumentTables::tracks)
	{
		const KeyframeTrack& track = all.*t.track;
		if(!track.IsEmpty())
			j[t.name] = keys(track);
	}
	return j;
}

Json objects(const BaseObject* first, BaseDocument& doc);

// A cache the host did not build itself; null for none.
const BaseObject* keptCache(const BaseObject* cache)
{
	return cache && !cache->GetBit(BIT_BUILTCACHE) ? cache : nullptr;
}

Json object(const BaseObject& op, BaseDocument& doc)
{
	Json j = node(op, true);
	if(op.GetMl() != Matrix())
		j["matrix"] = matrix(op.GetMl());
	if(op.GetRenderMode() != MODE_UNDEF)
		j["render_mode"] = nameOf(DocumentTables::modes, op.GetRenderMode());
	if(op.GetEditorMode() != MODE_UNDEF)
		j["editor_mode"] = nameOf(DocumentTables::modes, op.GetEditorMode());
	if(!op.GetDeformMode())
		j["enabled"] = false;
	if(const LayerObject* layer = op.GetLayerObject(&doc))
		j["layer"] = layer->GetName().GetStdString();
	if(op.GetBit(BIT_ACTIVE))
		j["active"] = true;
	if(op.GetType() == Opolygon)
		addGeometry(j, static_cast<const PolygonObject&>(op));
	addParams(j, op);
	if(op.GetFirstTag())
		j["tags"] = list(op.GetFirstTag(), tag);
	if(!op.GetTracks().IsEmpty())
		j["tracks"] = tracks(op.GetTracks());
	if(const BaseObject* cache = keptCache(op.GetCache()))
		j["cache"] = object(*cache, doc);
	if(const BaseObject* cache = keptCache(op.GetDeformCache()))
		j["deform_cache"] = object(*cache, doc);
	if(op.GetDown())
		j["children"] = objects(op.GetDown(), doc);
	return j;
}

Json objects(const BaseObject* first, BaseDocument& doc)
{
	return list(first, [&doc](const BaseObject& op) { return object(op, doc); });
}

Json layers(BaseDocument& doc)
{
	Json list = Json::array();
	for(GeListNode* n = doc.GetLayerObjectRoot()->GetFirst(); n; n = n->GetNext())
	{
		const LayerObject& layer = *static_cast<const LayerObject*>(n);
		Json j = node(layer, false);
		j["render"] = layer.GetLayerData().render;
		j["view"] = layer.GetLayerData().view;
		addParams(j, layer);
		list.push_back(std::move(j));
	}
	return list;
}

Json render(const RenderData& rd)
{
	Json j = node(rd, false);
	addParams(j, rd);
	Json posts = Json::array();
	for(const BaseVideoPost* post = rd.GetFirstVideoPost(); post; post = post->GetNext())
	{
		Json pj = node(*post, true);
		pj["enabled"] = (post->GetInfo() & VIDEOPOST_DISABLED) == 0;
		addParams(pj, *post);
		posts.push_back(std::move(pj));
	}
	j["videoposts"] = std::move(posts);
	return j;
}

Json document(const BaseDocument& constDoc)
{
	// The layer list and the layer of an object or a material are only
	// reachable through a document that is not const; nothing here changes it.
	BaseDocument& doc = const_cast<BaseDocument&>(constDoc);
	Json j = Json::object();
	j["version"] = DocumentTables::formatVersion;
	j["name"] = doc.GetDocumentName().GetString().GetStdString();
	j["path"] = doc.GetDocumentPath().GetString().GetStdString();
	j["unit"] = nameOf(DocumentTables::units, doc.GetUnit());
	j["fps"] = doc.GetFps();
	j["time"] = time(doc.GetTime());
	if(doc.GetActiveCamera())
		j["camera"] = doc.GetActiveCamera()->GetName().GetStdString();
	j["layers"] = layers(doc);
	j["materials"] = list(doc.GetFirstMaterial(), [&doc](const BaseMaterial& mat) { return material(mat, doc); });
	j["objects"] = objects(doc.GetFirstObject(), doc);
	j["render"] = render(*doc.GetActiveRenderData());
	return j;
}

} // namespace

std::string WriteDocumentText(const BaseDocument& doc)
{
	return document(doc).dump(1, '\t') + "\n";
}

void SaveDocumentFile(const BaseDocument& doc, const Filename& file)
{
	Velorn::FileUtils::writeEntireFile(file.GetString().GetStdString(), WriteDocumentText(doc));
}
