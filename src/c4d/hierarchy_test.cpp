#include "c4d/base_draw.h"
#include "c4d/hierarchy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

// Records the walk: each object's name with its world offset, and the data
// of its level. Children get a fresh level when levels are asked for.
class Recorder : public Hierarchy
{
public:
	bool levels = false;
	std::string stopAt;
	std::vector<std::string> seen;
	int allocated = 0, freed = 0;

	void* Alloc() override
	{
		if(!levels)
			return nullptr;
		++allocated;
		return new int(0);
	}
	void Free(void* data) override
	{
		++freed;
		delete static_cast<int*>(data);
	}
	void CopyTo(void* src, void* dst) override { *static_cast<int*>(dst) = *static_cast<int*>(src) + 1; }
	bool Do(void* data, BaseObject* op, const Matrix& mg, bool) override
	{
		seen.push_back(op->GetName().GetStdString() + "@" + std::to_string((int)mg.off.x) + "/" +
			std::to_string(*static_cast<int*>(data)));
		return op->GetName().GetStdString() != stopAt;
	}
};

BaseObject* add(BaseDocument* doc, const char* name, double x, BaseObject* parent = nullptr)
{
	BaseObject* op = BaseObject::Alloc(Onull);
	op->SetName(String(name));
	op->SetMl(Matrix(Vector(x, 0, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	BaseObject* last = parent ? parent->GetDownLast() : nullptr;
	if(!parent)
		for(BaseObject* o = doc->GetFirstObject(); o; o = o->GetNext())
			last = o;
	doc->InsertObject(op, parent, last);
	return op;
}

} // namespace

TEST(Hierarchy, WalksInTreeOrderWithWorldMatricesUntilDoStops)
{
	BaseDocument* doc = BaseDocument::Alloc();
	int top = 7;
	{
		Recorder empty;
		EXPECT_TRUE(empty.Run(doc, true, 1.0, 20, &top, nullptr));
		EXPECT_TRUE(empty.seen.empty());
		EXPECT_FALSE(empty.Run(nullptr, true, 1.0, 20, &top, nullptr));
	}
	BaseObject* a = add(doc, "a", 10);
	add(doc, "b", 1, add(doc, "a1", 5, a));
	add(doc, "a2", 2, a);
	add(doc, "c", 100);

	Recorder plain;
	EXPECT_TRUE(plain.Run(doc, true, 1.0, 20, &top, nullptr));
	EXPECT_EQ(plain.seen, (std::vector<std::string>{"a@10/7", "a1@15/7", "b@16/7", "a2@12/7", "c@100/7"}));

	Recorder levels;
	levels.levels = true;
	EXPECT_TRUE(levels.Run(doc, true, 1.0, 20, &top, nullptr));
	EXPECT_EQ(levels.seen, (std::vector<std::string>{"a@10/7", "a1@15/8", "b@16/9", "a2@12/8", "c@100/7"}));
	EXPECT_EQ(levels.allocated, 2);
	EXPECT_EQ(levels.freed, 2);

	Recorder stopping;
	stopping.levels = true;
	stopping.stopAt = "b";
	EXPECT_TRUE(stopping.Run(doc, true, 1.0, 20, &top, nullptr));
	EXPECT_EQ(stopping.seen, (std::vector<std::string>{"a@10/7", "a1@15/8", "b@16/9"}));
	EXPECT_EQ(stopping.freed, stopping.allocated);

	BaseThread thread;
	thread.End();
	Recorder broken;
	EXPECT_FALSE(broken.Run(doc, true, 1.0, 20, &top, &thread));
	EXPECT_TRUE(broken.seen.empty());
	BaseDocument::Free(doc);
}

TEST(BaseDraw, SceneCameraIsTheActiveCameraOrTheEditorCamera)
{
	BaseDocument* doc = BaseDocument::Alloc();
	BaseDraw* view = doc->GetActiveBaseDraw();
	ASSERT_NE(view, nullptr);
	BaseObject* editor = view->GetSceneCamera(doc);
	ASSERT_NE(editor, nullptr);
	EXPECT_EQ(editor, view->GetEditorCamera());
	EXPECT_EQ(editor->GetType(), Ocamera);
	const BaseContainer* data = editor->GetDataInstance();
	EXPECT_EQ(data->GetFloat(CAMERA_SENSOR_WIDTH), 36.0);
	EXPECT_NEAR(data->GetFloat(CAMERA_FOV), 0.927295218, 1e-9); // 2 atan(18 / 36)
	EXPECT_EQ(data->GetInt32(CAMERA_PROJECTION, -1), CAMERA_PROJECTION_PERSPECTIVE);
	EXPECT_EQ(data->GetFloat(CAMERA_TARGET_DISTANCE), 2000.0);

	BaseObject* camera = BaseObject::Alloc(Ocamera);
	doc->InsertObject(camera, nullptr, nullptr);
	doc->SetActiveCamera(camera);
	EXPECT_EQ(view->GetSceneCamera(doc), camera);
	EXPECT_EQ(view->GetSceneCamera(nullptr), nullptr);
	doc->SetActiveCamera(nullptr);
	BaseDocument::Free(doc);
}
