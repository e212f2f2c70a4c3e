#pragma once

#include "c4d/base_document.h"
#include "c4d/camera_object.h"

#include <cstdint>
#include <memory>
#include <vector>

class BaseBitmap;

// The parameter of SetDrawParam that plug-ins set before they draw: a
// number whose meaning belongs to the application's drawing (how lines lie
// over the shaded view, how transparent a polygon is). The headless view
// records it and draws the same either way.
enum
{
	DRAW_PARAMETER_SETTING = 1000,
};

// The kinds of the safe frame, the part of the view that shows the render's
// picture (GetSafeFrame): the picture is narrower than the view and spans
// the columns cut to size, or it is wider and spans the rows cut to size;
// with the view's own proportions there is no safe frame kind.
enum
{
	SAFEFRAME_NONE = 0,
	SAFEFRAME_COLUMNS = 1,
	SAFEFRAME_ROWS = 2,
};

// One call to the view, as it recorded it, so that tests can read what a
// plug-in drew. Points of 2D calls are in pixels of the view (z unused);
// points of 3D calls are in the coordinates of matrix.
struct DrawCall
{
	enum class Kind
	{
		Pen,
		Setting,
		Matrix,
		Line2D,
		Line3D,
		Polygon,
		PolygonObject,
	};

	explicit DrawCall(Kind kind_) : kind(kind_) {}

	Kind kind;
	// The pen colour of the call (lines), or the colour set (Pen).
	Vector color;
	// The matrix that 3D points were given in.
	Matrix matrix;
	// The end points of a line, the corners of a polygon.
	std::vector<Vector> points;
	// A polygon's colours and normals at its corners.
	std::vector<Vector> colors;
	std::vector<Vector> normals;
	// The value of a setting, the flags of a polygon object.
	int32_t value = 0;
	// The object of SetMatrix_Matrix and DrawPolygonObject; rasterise reads
	// a polygon object's points through it, so it must still exist then.
	const BaseObject* object = nullptr;
};

// A view of the editor. The headless host has one, shared by all
// documents, and tests make their own; what it shows is the document's
// active camera, or its own editor camera when the document names none.
//
// Drawing calls are recorded in order (calls()), and rasterise() turns the
// record into a picture: 2D lines as they are, 3D lines and polygon edges
// projected through the scene camera. Nothing is shaded.
class BaseDraw
{
public:
	// A view of width by height pixels.
	explicit BaseDraw(int32_t width = 800, int32_t height = 600);
	BaseDraw(const BaseDraw&) = delete;
	BaseDraw& operator=(const BaseDraw&) = delete;
	~BaseDraw();

	// The object the view renders doc through: its active camera, else the
	// editor camera. Null only without a document.
	BaseObject* GetSceneCamera(const BaseDocument* doc) const;
	// The view's own camera, a camera object in no document, at the origin
	// with the host's camera defaults.
	BaseObject* GetEditorCamera() const { return editorCamera.get(); }

	// The document the view shows: DrawDocument sets it. The safe frame and
	// the projection follow its render size and camera.
	void SetDocument(BaseDocument* doc_) { doc = doc_; }
	BaseDocument* GetDocument() const { return doc; }
	// Changes the size of the view in pixels; sizes below 1 count as 1.
	void SetViewSize(int32_t width, int32_t height);

	// The view's pixels: left and top 0, right and bottom the last column
	// and row.
	void GetFrame(int32_t* left, int32_t* top, int32_t* right, int32_t* bottom) const;
	// Where the render's picture lies in the view (SAFEFRAME_ kinds): the
	// first and the last column (kind 1) or row (kind 2) it covers; kind 0,
	// cut 0 and size the last column when the document's render size has the
	// view's proportions or there is no document.
	void GetSafeFrame(int32_t* cut, int32_t* size, int32_t* kind) const;

	// The colour of the lines and polygons that follow (components 0 to 1).
	void SetPen(const Vector& color);
	void SetDrawParam(int32_t id, const GeData& data);
	// The matrix that 3D points are given in from now on, that of op.
	void SetMatrix_Matrix(const BaseObject* op, const Matrix& mg);
	// A line between two pixels of the view.
	void DrawLine2D(const Vector& p1, const Vector& p2);
	// A line between two points in the current matrix.
	void DrawLine(const Vector& p1, const Vector& p2, int32_t flags = 0);
	// A triangle (count 3) or a quadrangle (count 4) in the current matrix,
	// with a colour and a normal at each corner.
	void DrawPolygon(const Vector* p, const Vector* f, const Vector* n, int32_t count);
	// The polygon object op shaded, in the current matrix; false for an
	// object that is no polygon object.
	bool DrawPolygonObject(BaseDrawHelp* bh, BaseObject* op, int32_t flags = 0);
	// The colour the editor shows op in: orange when selected, else blue.
	Vector GetObjectColor(BaseDrawHelp* bh, const BaseObject* op) const;

	// The calls since the last clear, in order.
	const std::vector<DrawCall>& calls() const { return record; }
	void clearCalls();

	// Draws the recorded calls into bmp, made anew at the view's size over a
	// dark grey ground. False when the picture cannot be made.
	bool rasterise(BaseBitmap& bmp) const;
	// The pixel a point in world coordinates projects to through the scene
	// camera; false behind the camera.
	bool project(const Vector& world, double& x, double& y) const;

private:
	void add(DrawCall call);

	std::unique_ptr<BaseObject> editorCamera;
	BaseDocument* doc = nullptr;
	int32_t width;
	int32_t height;
	Vector pen = Vector(1, 1, 1);
	Matrix matrix;
	std::vector<DrawCall> record;
};

// What a Draw call knows of the object being drawn besides the view: its
// document and its world matrix.
class BaseDrawHelp
{
public:
	BaseDrawHelp(BaseDraw* bd_, BaseDocument* doc_) : bd(bd_), doc(doc_) {}

	BaseDocument* GetDocument() const { return doc; }
	BaseDraw* GetBaseDraw() const { return bd; }
	// The world matrix of the object being drawn; identity before one is set.
	const Matrix& GetMg() const { return mg; }
	void SetObject(const BaseObject* op) { mg = op ? op->GetMg() : Matrix(); }

private:
	BaseDraw* bd;
	BaseDocument* doc;
	Matrix mg;
};

// Flags of DrawDocument.
enum
{
	// The host draws the wires of polygon objects and of generators' caches
	// itself before the plug-ins draw.
	DRAWDOCUMENT_HOST_OBJECTS = 1,
};

// Draws doc into bd as the editor redraws a view: (with
// DRAWDOCUMENT_HOST_OBJECTS) the host's polygon objects, then for each
// object of the tree that the editor shows its plug-in's Draw in
// DRAWPASS_OBJECT and the Draw of each of its plug-in tags. The view keeps
// its earlier calls; it is set to show doc.
void DrawDocument(BaseDocument* doc, BaseDraw* bd, int32_t flags = 0);
