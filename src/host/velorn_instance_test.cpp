// The instance object, the section plane and "Create Instances".

#include "c4d/atom_array.h"
#include "c4d/base_draw.h"
#include "c4d/events.h"
#include "c4d/hierarchy_help.h"
#include "c4d/polygon_object.h"
#include "host/create_instances_command.h"
#include "host/host_test_helpers.h"
#include "host/plugin_ids.h"
#include "host/section_plane.h"
#include "host/velorn_instance.h"

#include <map>
#include <vector>

namespace
{

class InstanceTest : public HostPluginTest
{
protected:
	void SetUp() override { registerPlugins({RegisterVelornInstance, RegisterSectionPlane}); }

	// A polygon object of one quadrangle and one triangle, 10 by 20 by 4,
	// alone under a null object of its own unless a parent is given: an
	// instance draws its target's following siblings too, and ignores a
	// target when it is one of them.
	PolygonObject* addShape(const char* name, BaseObject* parent = nullptr)
	{
		if(!parent)
			parent = addObject(Onull, "holder");
		PolygonObject* poly = PolygonObject::Alloc(5, 2);
		poly->SetName(String(name));
		Vector* p = poly->GetPointW();
		p[0] = Vector(0, 0, 0);
		p[1] = Vector(10, 0, 0);
		p[2] = Vector(10, 20, 0);
		p[3] = Vector(0, 20, 4);
		p[4] = Vector(5, 10, 2);
		poly->GetPolygonW()[0] = CPolygon(0, 1, 2, 3);
		poly->GetPolygonW()[1] = CPolygon(0, 1, 4);
		doc->InsertObject(poly, parent, nullptr);
		return poly;
	}

	BaseObject* addInstance(BaseObject* target, int32_t display, BaseObject* parent = nullptr)
	{
		BaseObject* instance = addObject(ID_VELORN_INSTANCE, "instance", parent);
		instance->GetDataInstance()->SetLink(inst_link, target);
		instance->GetDataInstance()->SetInt32(inst_display, display);
		return instance;
	}

	static std::vector<const DrawCall*> callsOf(const BaseDraw& view, DrawCall::Kind kind)
	{
		std::vector<const DrawCall*> found;
		for(const DrawCall& call : view.calls())
			if(call.kind == kind)
				found.push_back(&call);
		return found;
	}

	static DRAWRESULT draw(BaseObject* op, BaseDraw& view)
	{
		view.SetDocument(op->GetDocument());
		BaseDrawHelp bh(&view, op->GetDocument());
		bh.SetObject(op);
		return static_cast<ObjectData*>(op->GetNodeData())->Draw(op, DRAWPASS_OBJECT, &view, &bh);
	}

	static Matrix moved(const Vector& off)
	{
		Matrix m;
		m.off = off;
		return m;
	}
};

} // namespace

TEST_F(InstanceTest, SizeFollowsTheTarget)
{
	Vector mp, rad;
	BaseObject* unlinked = addInstance(nullptr, inst_display_wires);
	GetObjectDimension(unlinked, &mp, &rad);
	EXPECT_EQ(mp, Vector());
	EXPECT_EQ(rad, Vector(50, 50, 50));

	PolygonObject* shape = addShape("shape");
	BaseObject* linked = addInstance(shape, inst_display_wires);
	GetObjectDimension(linked, &mp, &rad);
	EXPECT_EQ(mp, Vector(5, 10, 2));
	EXPECT_EQ(rad, Vector(5, 10, 2));

	// A later sibling of its target would draw itself: the link is ignored.
	BaseObject* after = addInstance(shape->GetUp(), inst_display_wires);
	GetObjectDimension(after, &mp, &rad);
	EXPECT_EQ(rad, Vector());

	// Linked to its own parent: no recursion, and nothing to size.
	BaseObject* parent = addObject(Onull, "parent");
	BaseObject* inside = addInstance(parent, inst_display_wires, parent);
	GetObjectDimension(inside, &mp, &rad);
	EXPECT_EQ(rad, Vector());
	BaseDraw view;
	EXPECT_EQ(draw(inside, view), DRAWRESULT_SKIP);
	EXPECT_TRUE(view.calls().empty());
}

TEST_F(InstanceTest, DrawsTheTargetByMode)
{
	PolygonObject* shape = addShape("shape");
	shape->SetMl(moved(Vector(100, 0, 0)));
	BaseObject* instance = addInstance(shape, inst_display_wires);
	instance->SetMl(moved(Vector(0, 50, 0)));
	const Matrix expected = moved(Vector(100, 50, 0));

	BaseDraw wires;
	draw(instance, wires);
	const auto lines = callsOf(wires, DrawCall::Kind::Line3D);
	// The quadrangle's four edges, then the triangle's three.
	const std::vector<std::pair<int, int>> edges = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 1}, {1, 4}, {4, 0}};
	ASSERT_EQ(lines.size(), edges.size());
	for(size_t i = 0; i < edges.size(); ++i)
	{
		SCOPED_TRACE(i);
		const Vector* p = shape->GetPointR();
		EXPECT_EQ(lines[i]->points, (std::vector<Vector>{p[edges[i].first], p[edges[i].second]}));
		EXPECT_EQ(lines[i]->matrix, expected);
	}
	const auto matrices = callsOf(wires, DrawCall::Kind::Matrix);
	ASSERT_EQ(matrices.size(), 1u);
	EXPECT_EQ(matrices[0]->object, shape);

	// Every corner of the box 0..10, 0..20, 0..4 ends three of its twelve edges.
	instance->GetDataInstance()->SetInt32(inst_display, inst_display_box);
	BaseDraw box;
	draw(instance, box);
	std::map<std::vector<double>, int> ends;
	for(const DrawCall* line : callsOf(box, DrawCall::Kind::Line3D))
		for(const Vector& p : line->points)
			++ends[{p.x, p.y, p.z}];
	EXPECT_EQ(ends.size(), 8u);
	for(const auto& [corner, count] : ends)
	{
		EXPECT_EQ(count, 3);
		EXPECT_TRUE(corner[0] == 0 || corner[0] == 10);
		EXPECT_TRUE(corner[1] == 0 || corner[1] == 20);
		EXPECT_TRUE(corner[2] == 0 || corner[2] == 4);
	}

	instance->GetDataInstance()->SetInt32(inst_display, inst_display_shaded);
	BaseDraw shaded;
	draw(instance, shaded);
	EXPECT_TRUE(callsOf(shaded, DrawCall::Kind::Line3D).empty());
	const auto objects = callsOf(shaded, DrawCall::Kind::PolygonObject);
	ASSERT_EQ(objects.size(), 1u);
	EXPECT_EQ(objects[0]->object, shape);
	EXPECT_EQ(objects[0]->matrix, expected);

	// The host's bit 0x200 turns the drawing off.
	instance->SetBit(0x200);
	BaseDraw off;
	draw(instance, off);
	EXPECT_TRUE(off.calls().empty());
}

TEST_F(InstanceTest, InstanceOfAnInstanceDrawsTheFirstTarget)
{
	PolygonObject* shape = addShape("shape");
	BaseObject* first = addInstance(shape, inst_display_wires, addObject(Onull, "holder of the first"));
	first->SetMl(moved(Vector(0, 0, 7)));
	BaseObject* second = addInstance(first, inst_display_wires);
	second->SetMl(moved(Vector(3, 0, 0)));
	BaseDraw view;
	draw(second, view);
	const auto lines = callsOf(view, DrawCall::Kind::Line3D);
	ASSERT_EQ(lines.size(), 7u);
	EXPECT_EQ(lines[0]->matrix, moved(Vector(3, 0, 7)));
}

TEST_F(InstanceTest, MakesAnEmptyCacheOnlyWhenAsked)
{
	PolygonObject* shape = addShape("shape");
	BaseObject* linked = addInstance(shape, inst_display_wires);
	BaseObject* unlinked = addInstance(nullptr, inst_display_wires);
	ObjectData* data = static_cast<ObjectData*>(linked->GetNodeData());
	struct Case
	{
		BaseObject* op;
		BaseDocument* document;
		int32_t flags;
		bool made;
	} cases[] = {
		{linked, doc, 4, true},
		{linked, doc, 6, false},
		{linked, doc, 0, false},
		{linked, nullptr, 4, false},
		{unlinked, doc, 4, false},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.flags);
		HierarchyHelp hh(c.document, c.flags);
		BaseObject* cache = data->GetVirtualObjects(c.op, &hh);
		EXPECT_EQ(cache != nullptr, c.made);
		if(cache)
		{
			EXPECT_EQ(cache->GetType(), 272);
			EXPECT_EQ(cache->GetMl(), Matrix());
			BaseObject::Free(cache);
		}
	}
}

TEST_F(InstanceTest, SectionPlaneDrawsASquareAndGreysItsList)
{
	BaseObject* plane = addObject(ID_SECTION_PLANE, "plane");
	const BaseContainer* data = plane->GetDataInstance();
	EXPECT_TRUE(data->GetBool(sp_cull_geometry));
	EXPECT_TRUE(data->GetBool(sp_use_list));
	EXPECT_EQ(data->GetInt32(sp_list_mode), sp_list_exclude);

	plane->SetMl(moved(Vector(1, 2, 3)));
	BaseDraw view;
	draw(plane, view);
	ASSERT_EQ(view.calls().size(), 3u);
	EXPECT_EQ(view.calls()[0].kind, DrawCall::Kind::Matrix);
	EXPECT_EQ(view.calls()[0].matrix, moved(Vector(1, 2, 3)));
	EXPECT_EQ(view.calls()[1].value, -200);
	const DrawCall& square = view.calls()[2];
	EXPECT_EQ(square.kind, DrawCall::Kind::Polygon);
	EXPECT_EQ(square.points, (std::vector<Vector>{Vector(-1000, -1000, 0), Vector(-1000, 1000, 0), Vector(1000, 1000, 0),
		Vector(1000, -1000, 0)}));
	EXPECT_EQ(square.colors, std::vector<Vector>(4, Vector(1, 1, 1)));
	EXPECT_EQ(square.normals, std::vector<Vector>(4, Vector(0, 0, 1)));

	plane->SetParameter(DescID(sp_use_list), GeData(0));
	plane->SetParameter(DescID(sp_cull_geometry), GeData(0));
	for(int32_t id : {sp_object_list, sp_list_mode, sp_use_list})
		EXPECT_FALSE(plane->IsParameterEnabled(DescID(id))) << id;
	EXPECT_TRUE(plane->IsParameterEnabled(DescID(sp_cull_geometry)));
	plane->SetParameter(DescID(sp_cull_geometry), GeData(1));
	EXPECT_TRUE(plane->IsParameterEnabled(DescID(sp_list_mode)));

	expectVisibility(describe(plane), {sp_cull_geometry, sp_object_list, sp_list_mode, sp_use_list}, {});
	realtime_edition = 1;
	expectVisibility(describe(plane), {sp_cull_geometry}, {sp_object_list, sp_list_mode, sp_use_list});

	BaseObject* instance = addInstance(nullptr, inst_display_box);
	expectVisibility(describe(instance), {inst_link, inst_display}, {});
}

namespace
{

// "Create Instances" runs as one undo group of the new objects and sends
// one event.
class CreateInstancesTest : public InstanceTest
{
protected:
	void runExpectingInstancesOf(const std::vector<BaseObject*>& targets)
	{
		const int32_t events = EventCount();
		CreateInstancesCommand command;
		ASSERT_TRUE(command.Execute(doc));
		EXPECT_EQ(EventCount(), events + 1);
		EXPECT_FALSE(doc->IsUndoOpen());
		ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
		const auto& group = doc->GetUndoGroups()[0];
		ASSERT_EQ(group.size(), targets.size());
		// At the top, in the order of the selection, before what was there.
		BaseObject* op = doc->GetFirstObject();
		for(size_t i = 0; i < targets.size(); ++i, op = op->GetNext())
		{
			SCOPED_TRACE(i);
			EXPECT_EQ(group[i].type, UNDOTYPE_NEW);
			EXPECT_EQ(group[i].node, op);
			EXPECT_EQ(op->GetType(), ID_VELORN_INSTANCE);
			EXPECT_EQ(op->GetDataInstance()->GetLink(inst_link), targets[i]);
		}
		EXPECT_EQ(op, first_before);
	}

	BaseObject* first_before = nullptr;
};

} // namespace

TEST_F(CreateInstancesTest, OneInstancePerSelectedObject)
{
	BaseObject* parent = first_before = addObject(Onull, "parent");
	parent->SetMl(moved(Vector(10, 0, 0)));
	BaseObject* alpha = addObject(Onull, "Alpha", parent);
	alpha->SetMl(moved(Vector(1, 2, 3)));
	BaseObject* beta = addObject(Onull, "Beta");
	alpha->SetBit(BIT_ACTIVE);
	beta->SetBit(BIT_ACTIVE);
	runExpectingInstancesOf({alpha, beta});

	const struct
	{
		BaseObject* instance;
		const char* name;
		Vector place;
	} expected[] = {{doc->GetFirstObject(), "Alpha", Vector(11, 2, 3)}, {doc->GetFirstObject()->GetNext(), "Beta", Vector()}};
	for(const auto& e : expected)
	{
		SCOPED_TRACE(e.name);
		EXPECT_EQ(e.instance->GetName(), String(e.name));
		EXPECT_EQ(e.instance->GetMg(), moved(e.place));
		EXPECT_EQ(e.instance->GetDataInstance()->GetInt32(inst_display), inst_display_shaded);
	}
}

TEST_F(CreateInstancesTest, WithoutSelectionOneEmptyInstanceBecomesActive)
{
	first_before = addObject(Onull, "existing");
	runExpectingInstancesOf({nullptr});
	EXPECT_EQ(doc->GetActiveObject(), doc->GetFirstObject());
}
