#include "c4d/document_file.h"
#include "c4d/document_tables.h"
#include "c4d/polygon_object.h"

#include "support/file_utils.h"

#include <nlohmann/json.hpp>

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

// Tags and materials: a type, a name and parameters each.
template<typename T>
Json plainNodes(const T* first)
{
	Json list = Json::array();
	for(const T* n = first; n; n = n->GetNext())
	{
		Json j = node(*n, true);
		addParams(j, *n);
		list.push_back(std::move(j));
	}
	return list;
}

Json objects(const BaseObject* first, BaseDocument& doc);

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
	if(op.GetType() == Opolygon)
		addGeometry(j, static_cast<const PolygonObject&>(op));
	addParams(j, op);
	if(op.GetFirstTag())
		j["tags"] = plainNodes(op.GetFirstTag());
	if(op.GetDown())
		j["children"] = objects(op.GetDown(), doc);
	return j;
}

Json objects(const BaseObject* first, BaseDocument& doc)
{
	Json list = Json::array();
	for(const BaseObject* op = first; op; op = op->GetNext())
		list.push_back(object(*op, doc));
	return list;
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
	// The layer list and an object's layer are only reachable through a
	// document that is not const; nothing here changes it.
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
	j["materials"] = plainNodes(doc.GetFirstMaterial());
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
