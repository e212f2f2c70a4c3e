#pragma once

#include "c4d/base_list.h"
#include "c4d/base_material.h"
#include "c4d/base_object.h"
#include "c4d/base_time.h"
#include "c4d/filename.h"
#include "c4d/layer_object.h"
#include "c4d/render_data.h"

#include <vector>

class AtomArray;
class BaseDraw;
class BaseThread;

// The kinds of undo entries, by the application's numbers.
enum
{
	UNDOTYPE_CHANGE = 40,
	UNDOTYPE_CHANGE_SMALL = 42,
	UNDOTYPE_NEW = 44,
	UNDOTYPE_DELETE = 45,
};

// Modes of SetActiveMaterial.
enum
{
	SELECTION_NEW = 0,
	SELECTION_ADD = 1,
	SELECTION_SUB = 2,
};

// One undo entry as the document recorded it: its kind, the node and the
// node's name and type when the entry was added (the node may be gone).
struct UndoEntry
{
	int32_t type;
	BaseList2D* node;
	String name;
	int32_t nodeType;
};

// Flags of AnimateObject.
enum
{
	// Only the keyframes are set: no expressions, no particles.
	ANIMATEFLAGS_QUICK = 8,
	// The object alone, not its children.
	ANIMATEFLAGS_NO_CHILDREN = 16,
};

// The length units a document can be set to, by the application's numbering
// of its unit preference.
enum
{
	DOCUMENT_UNIT_KM = 1,
	DOCUMENT_UNIT_M = 2,
	DOCUMENT_UNIT_CM = 3,
	DOCUMENT_UNIT_MM = 4,
};

// The node type of documents, a number of this host's own.
enum
{
	Tbasedocument = 110059,
};

// A document: the object tree, the materials, the layers and one active
// render data, which it owns, with the current time, frame rate, scene
// camera, its file's place and its length unit.
class BaseDocument : public BaseList2D
{
public:
	BaseDocument();

	static BaseDocument* Alloc() { return new BaseDocument(); }

	BaseObject* GetFirstObject() const { return static_cast<BaseObject*>(objects.GetFirst()); }
	// Puts op after pred when given, else first under parent when given,
	// else first at the top of the tree; the document owns it.
	void InsertObject(BaseObject* op, BaseObject* parent, BaseObject* pred);

	BaseMaterial* GetFirstMaterial() const { return static_cast<BaseMaterial*>(materials.GetFirst()); }
	// Puts mat after pred, or first when pred is null; the document owns it.
	void InsertMaterial(BaseMaterial* mat, BaseMaterial* pred = nullptr) { materials.Insert(mat, pred); }

	// The materials with BIT_ACTIVE, in list order, appended to selection.
	void GetActiveMaterials(AtomArray& selection) const;
	// SELECTION_NEW makes mat the only active material (none for null),
	// SELECTION_ADD and SELECTION_SUB add it to or take it from the active ones.
	void SetActiveMaterial(BaseMaterial* mat, int32_t mode = SELECTION_NEW);

	// The objects of the tree with BIT_ACTIVE (selected in the object
	// manager), in tree order, appended to selection; caches are not looked at.
	void GetActiveObjects(AtomArray& selection) const;
	// The one selected object; null when none or several are.
	BaseObject* GetActiveObject() const;
	// The selected tags (BIT_ACTIVE) of the tree's objects, object by object
	// in tree order, appended to selection.
	void GetActiveTags(AtomArray& selection) const;
	// The one selected tag; null when none or several are.
	BaseTag* GetActiveTag() const;
	// The first object of the tree named name, depth first; null for none.
	BaseObject* SearchObject(const String& name) const;

	// Undo: entries are added between StartUndo and EndUndo, which make
	// one group; groups nest, and the outermost pair closes the group. The
	// headless host records the groups for tests instead of undoing.
	bool StartUndo();
	// Records an entry in the open group; false when no group is open.
	bool AddUndo(int32_t type, BaseList2D* node);
	bool EndUndo();
	// The closed groups, oldest first, and whether a group is open.
	const std::vector<std::vector<UndoEntry>>& GetUndoGroups() const { return undoGroups; }
	bool IsUndoOpen() const { return undoDepth > 0; }

	// The document's layers; insert a LayerObject there to add one.
	GeListHead* GetLayerObjectRoot() { return &layers; }

	RenderData* GetActiveRenderData() const { return renderData; }

	const BaseTime& GetTime() const { return time; }
	void SetTime(const BaseTime& t) { time = t; }
	int32_t GetFps() const { return fps; }
	// A rate below 1 frame per second is refused.
	void SetFps(int32_t fps_);
	// The frame the current time lies in at the document's rate.
	int32_t GetFrame() const { return time.GetFrame(fps); }

	// The object the scene is rendered through; null for the editor camera.
	// The object must be in this document; it is not told when the object is
	// freed, so whoever frees the camera clears it first.
	BaseObject* GetActiveCamera() const { return camera; }
	void SetActiveCamera(BaseObject* op) { camera = op; }
	// The editor view the document is shown in (base_draw.h).
	BaseDraw* GetActiveBaseDraw() const;

	// The directory of the document's file, and the file name.
	const Filename& GetDocumentPath() const { return path; }
	void SetDocumentPath(const Filename& p) { path = p; }
	const Filename& GetDocumentName() const { return name; }
	void SetDocumentName(const Filename& n) { name = n; }

	// What the application does before a render: with animation, every
	// object takes its keyframe values at the document's time; with caches,
	// every primitive generator without a cache gets the one it builds.
	// Expressions and flags are accepted for the application's signature and
	// change nothing here. False when bt asks to stop.
	bool ExecutePasses(BaseThread* bt, bool animation, bool expressions, bool caches, int32_t flags);
	// Sets op's local matrix (and, unless ANIMATEFLAGS_NO_CHILDREN, its
	// children's) to the values of its keyframe tracks at time; objects
	// without tracks keep theirs.
	void AnimateObject(BaseObject* op, const BaseTime& time, int32_t flags);

	// One of the DOCUMENT_UNIT_ constants; other values are refused. The
	// unit is the host's unit preference (WPREF_UNITS), shared by all
	// documents as in the application.
	int32_t GetUnit() const;
	bool SetUnit(int32_t unit_);
	// The length of one host unit in metres.
	double GetUnitScale() const;

private:
	GeListHead objects;
	GeListHead materials;
	GeListHead layers;
	GeListHead renderDatas;
	RenderData* renderData;
	BaseTime time;
	int32_t fps = 30;
	BaseObject* camera = nullptr;
	Filename path;
	Filename name;
	std::vector<std::vector<UndoEntry>> undoGroups;
	std::vector<UndoEntry> openUndo;
	int32_t undoDepth = 0;
};
