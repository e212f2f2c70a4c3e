#include "c4d/base_draw.h"

#include "c4d/polygon_object.h"

#include <algorithm>
#include <cmath>

BaseDraw::BaseDraw(int32_t width_, int32_t height_) : editorCamera(BaseObject::Alloc(Ocamera))
{
	editorCamera->SetName(String("Editor Camera"));
	SetViewSize(width_, height_);
}

BaseDraw::~BaseDraw() = default;

BaseObject* BaseDraw::GetSceneCamera(const BaseDocument* doc_) const
{
	if(!doc_)
		return nullptr;
	BaseObject* camera = doc_->GetActiveCamera();
	return camera ? camera : editorCamera.get();
}

void BaseDraw::SetViewSize(int32_t width_, int32_t height_)
{
	width = std::max(width_, 1);
	height = std::max(height_, 1);
}

void BaseDraw::GetFrame(int32_t* left, int32_t* top, int32_t* right, int32_t* bottom) const
{
	*left = 0;
	*top = 0;
	*right = width - 1;
	*bottom = height - 1;
}

void BaseDraw::GetSafeFrame(int32_t* cut, int32_t* size, int32_t* kind) const
{
	*kind = SAFEFRAME_NONE;
	*cut = 0;
	*size = width - 1;
	const RenderData* rd = doc ? doc->GetActiveRenderData() : nullptr;
	if(!rd)
		return;
	const double render_width = rd->GetDataInstance()->GetFloat(RDATA_XRES);
	const double render_height = rd->GetDataInstance()->GetFloat(RDATA_YRES);
	if(render_width <= 0 || render_height <= 0)
		return;
	// Compared as cross products, so that equal proportions stay exact.
	const double wide = render_width * height - render_height * width;
	if(wide > 0)
	{
		// Wider than the view: bars above and below.
		const int32_t rows = (int32_t)std::lround(width * render_height / render_width);
		*kind = SAFEFRAME_ROWS;
		*cut = (height - rows) / 2;
		*size = *cut + rows - 1;
	}
	else if(wide < 0)
	{
		const int32_t columns = (int32_t)std::lround(height * render_width / render_height);
		*kind = SAFEFRAME_COLUMNS;
		*cut = (width - columns) / 2;
		*size = *cut + columns - 1;
	}
}

void BaseDraw::add(DrawCall call)
{
	record.push_back(std::move(call));
}

void BaseDraw::SetPen(const Vector& color)
{
	pen = color;
	DrawCall call(DrawCall::Kind::Pen);
	call.color = color;
	add(std::move(call));
}

void BaseDraw::SetDrawParam(int32_t id, const GeData& data)
{
	if(id != DRAW_PARAMETER_SETTING)
		return;
	DrawCall call(DrawCall::Kind::Setting);
	call.value = data.GetInt32();
	add(std::move(call));
}

void BaseDraw::SetMatrix_Matrix(const BaseObject* op, const Matrix& mg)
{
	matrix = mg;
	DrawCall call(DrawCall::Kind::Matrix);
	call.matrix = mg;
	call.object = op;
	add(std::move(call));
}

void BaseDraw::DrawLine2D(const Vector& p1, const Vector& p2)
{
	DrawCall call(DrawCall::Kind::Line2D);
	call.color = pen;
	call.points = {p1, p2};
	add(std::move(call));
}

void BaseDraw::DrawLine(const Vector& p1, const Vector& p2, int32_t)
{
	DrawCall call(DrawCall::Kind::Line3D);
	call.color = pen;
	call.matrix = matrix;
	call.points = {p1, p2};
	add(std::move(call));
}

void BaseDraw::DrawPolygon(const Vector* p, const Vector* f, const Vector* n, int32_t count)
{
	DrawCall call(DrawCall::Kind::Polygon);
	call.color = pen;
	call.matrix = matrix;
	call.points.assign(p, p + count);
	if(f)
		call.colors.assign(f, f + count);
	if(n)
		call.normals.assign(n, n + count);
	add(std::move(call));
}

bool BaseDraw::DrawPolygonObject(BaseDrawHelp* bh, BaseObject* op, int32_t flags)
{
	if(!op || op->GetType() != Opolygon)
		return false;
	DrawCall call(DrawCall::Kind::PolygonObject);
	call.color = GetObjectColor(bh, op);
	call.matrix = matrix;
	call.object = op;
	call.value = flags;
	add(std::move(call));
	return true;
}

Vector BaseDraw::GetObjectColor(BaseDrawHelp*, const BaseObject* op) const
{
	if(op && op->GetBit(BIT_ACTIVE))
		return Vector(1.0, 0.6, 0.1);
	return Vector(0.3, 0.6, 1.0);
}

void BaseDraw::clearCalls()
{
	record.clear();
}

bool BaseDraw::project(const Vector& world, double& x, double& y) const
{
	const BaseObject* camera = GetSceneCamera(doc);
	if(!camera)
		camera = editorCamera.get();
	const Vector p = Invert(camera->GetMg()) * world;
	if(p.z <= 0)
		return false;
	const BaseContainer* data = camera->GetDataInstance();
	const double focal = data->GetFloat(CAMERA_FOCAL_LENGTH, 36.0);
	const double sensor = data->GetFloat(CAMERA_SENSOR_WIDTH, 36.0);
	// The film's width covers the render's picture, which is the safe frame
	// of the view.
	int32_t cut, size, kind;
	GetSafeFrame(&cut, &size, &kind);
	const double film_pixels = kind == SAFEFRAME_COLUMNS ? size - cut + 1 : width;
	const double scale = sensor > 0 ? focal / sensor * film_pixels : film_pixels;
	x = (width - 1) * 0.5 + p.x / p.z * scale;
	y = (height - 1) * 0.5 - p.y / p.z * scale;
	return true;
}

namespace
{

// Calls f(op) for op, its children and its following siblings, depth first.
template<typename F>
void walk(BaseObject* op, const F& f)
{
	for(; op; op = op->GetNext())
	{
		f(op);
		walk(op->GetDown(), f);
	}
}

// The edges of a polygon object's polygons in the view's matrix.
void drawWires(BaseDraw* bd, const PolygonObject* poly)
{
	const Vector* points = poly->GetPointR();
	const CPolygon* polygons = poly->GetPolygonR();
	for(int32_t i = 0; i < poly->GetPolygonCount(); ++i)
	{
		const CPolygon& p = polygons[i];
		bd->DrawLine(points[p.a], points[p.b]);
		bd->DrawLine(points[p.b], points[p.c]);
		if(p.c != p.d)
			bd->DrawLine(points[p.c], points[p.d]);
		bd->DrawLine(points[p.d], points[p.a]);
	}
}

// The host's own drawing of a polygon object, or of the polygon objects of
// a generator's cache, in the colour of the object of the document.
void drawHostObject(BaseDraw* bd, BaseDrawHelp* bh, BaseObject* op, const BaseObject* shown)
{
	BaseObject* source = op->GetDeformCache() ? op->GetDeformCache() : op->GetCache();
	if(source)
	{
		for(BaseObject* part = source; part; part = part->GetNext())
			drawHostObject(bd, bh, part, shown);
		return;
	}
	if(op->GetType() != Opolygon)
		return;
	bd->SetMatrix_Matrix(op, op->GetMg());
	bd->SetPen(bd->GetObjectColor(bh, shown));
	drawWires(bd, static_cast<PolygonObject*>(op));
}

} // namespace

void DrawDocument(BaseDocument* doc, BaseDraw* bd, int32_t flags)
{
	if(!doc || !bd)
		return;
	bd->SetDocument(doc);
	BaseDrawHelp bh(bd, doc);
	walk(doc->GetFirstObject(), [&](BaseObject* op) {
		if(op->GetEditorMode() == MODE_OFF)
			return;
		bh.SetObject(op);
		if(flags & DRAWDOCUMENT_HOST_OBJECTS && !op->GetNodeData())
			drawHostObject(bd, &bh, op, op);
		if(ObjectData* data = dynamic_cast<ObjectData*>(op->GetNodeData()))
			data->Draw(op, DRAWPASS_OBJECT, bd, &bh);
		for(BaseTag* tag = op->GetFirstTag(); tag; tag = tag->GetNext())
			if(TagData* data = dynamic_cast<TagData*>(tag->GetNodeData()))
				data->Draw(tag, op, bd, &bh);
	});
}

BaseDraw* BaseDocument::GetActiveBaseDraw() const
{
	static BaseDraw view;
	return &view;
}
