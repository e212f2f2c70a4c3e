#include "c4d/bake_texture.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/base_thread.h"
#include "c4d/polygon_object.h"
#include "c4d/primitives.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace
{

// The most super sampling the service takes: 2^5 by 2^5 samples a pixel.
constexpr int32_t maxSuperSampling = 5;

// The document InitBakeTexture answers: copies of what the bake reads, and
// where they are in it.
class BakeDocument : public BaseDocument
{
public:
	// The polygon object with its texture tag and the one UVW tag that lays
	// the picture out.
	PolygonObject* object = nullptr;
	UVWTag* uvw = nullptr;
	// The standard material whose colour channel is baked.
	BaseMaterial* material = nullptr;
};

// The polygon form of the tag's object: a copy of the object itself when it
// is a polygon object, else of its cache, a primitive built when the host
// has not built the cache yet. Null when there is none.
PolygonObject* polygonCopy(const BaseObject& op)
{
	if(const PolygonObject* poly = dynamic_cast<const PolygonObject*>(&op))
		return poly->GetClone();
	return CurrentStateToObject(op);
}

// Takes every tag of the given type off op and frees it.
void freeTags(BaseObject& op, int32_t type)
{
	while(BaseTag* tag = op.GetTag(type))
		BaseTag::Free(tag);
}

// One triangle of a polygon in picture coordinates (x = u * width,
// y = v * height) with the UVs and the normal that its samples get.
struct Triangle
{
	std::array<double, 3> x, y;
	std::array<Vector, 3> uv;
	Vector normal;
	// The inverse of twice the signed area, for the barycentric weights.
	double inverseArea = 0;
	// The rows and columns whose pixel centres it may cover, clipped to the picture.
	int32_t firstRow = 0, lastRow = -1, firstColumn = 0, lastColumn = -1;

	// The barycentric weights of (px, py); negative outside.
	std::array<double, 3> weights(double px, double py) const
	{
		const double w0 = ((x[1] - px) * (y[2] - py) - (x[2] - px) * (y[1] - py)) * inverseArea;
		const double w1 = ((x[2] - px) * (y[0] - py) - (x[0] - px) * (y[2] - py)) * inverseArea;
		return {w0, w1, 1 - w0 - w1};
	}
};

// The triangles of the polygons that the bake covers: all of them, or those
// of the tag's polygon selection. A quad is cut along its a-c diagonal;
// triangles without area in UV space cover nothing and are left out.
std::vector<Triangle> bakeTriangles(const BakeDocument& doc, const TextureTag& tag, int32_t width, int32_t height)
{
	const PolygonObject& op = *doc.object;
	const String restriction = tag.GetDataInstance()->GetString(TEXTURETAG_RESTRICTION);
	const BaseSelect* selection = nullptr;
	if(restriction.Content())
	{
		for(const BaseTag* t = op.GetFirstTag(); t; t = t->GetNext())
			if(t->GetType() == Tpolygonselection && t->GetName() == restriction)
				selection = static_cast<const SelectionTag*>(t)->GetBaseSelect();
	}
	const Matrix mg = op.GetMg();
	const Vector* points = op.GetPointR();
	// Polygons past the UVW tag's records have no layout and are not baked.
	const int32_t count = std::min(op.GetPolygonCount(), doc.uvw->GetDataCount());
	std::vector<Triangle> triangles;
	for(int32_t i = 0; i < count; ++i)
	{
		const CPolygon& poly = op.GetPolygonR()[i];
		if(!poly.IsWithin(op.GetPointCount()) || (restriction.Content() && (!selection || !selection->IsSelected(i))))
			continue;
		const UVWStruct& uv = doc.uvw->Get(i);
		const Vector normal = (mg * CalcFaceNormal(points, poly) - mg * Vector()).GetNormalized();
		const std::array<Vector, 4> corners = {uv.a, uv.b, uv.c, uv.d};
		const int32_t cuts = poly.IsTriangle() ? 1 : 2;
		for(int32_t k = 0; k < cuts; ++k)
		{
			Triangle t;
			t.uv = {corners[0], corners[1 + k], corners[2 + k]};
			for(int32_t j = 0; j < 3; ++j)
			{
				t.x[j] = t.uv[j].x * width;
				t.y[j] = t.uv[j].y * height;
			}
			const double doubleArea = (t.x[1] - t.x[0]) * (t.y[2] - t.y[0]) - (t.x[2] - t.x[0]) * (t.y[1] - t.y[0]);
			if(std::abs(doubleArea) < 1e-12)
				continue;
			t.inverseArea = 1 / doubleArea;
			t.normal = normal;
			// A centre exactly on an edge counts as inside, so that the
			// rounding of the bounds must not lose it.
			const auto [minY, maxY] = std::minmax({t.y[0], t.y[1], t.y[2]});
			const auto [minX, maxX] = std::minmax({t.x[0], t.x[1], t.x[2]});
			t.firstRow = std::max(0, (int32_t)std::ceil(minY - 0.5 - 1e-9));
			t.lastRow = std::min(height - 1, (int32_t)std::floor(maxY - 0.5 + 1e-9));
			t.firstColumn = std::max(0, (int32_t)std::ceil(minX - 0.5 - 1e-9));
			t.lastColumn = std::min(width - 1, (int32_t)std::floor(maxX - 0.5 + 1e-9));
			if(t.firstRow <= t.lastRow && t.firstColumn <= t.lastColumn)
				triangles.push_back(t);
		}
	}
	return triangles;
}

// The colour channel of the standard material: its shader, prepared for
// sampling while the object lives, or its colour times its brightness. A
// channel that is off is black.
class ColourChannel
{
public:
	ColourChannel(BaseMaterial& material_, BaseDocument& doc_) : material(material_), doc(doc_) {}
	~ColourChannel()
	{
		if(shader)
			shader->FreeRender();
	}
	ColourChannel(const ColourChannel&) = delete;
	ColourChannel& operator=(const ColourChannel&) = delete;

	bool init()
	{
		const BaseContainer& data = *material.GetDataInstance();
		if(!data.GetBool(MATERIAL_USE_COLOR))
			return true;
		BaseShader* linked = dynamic_cast<BaseShader*>(data.GetLink(MATERIAL_COLOR_SHADER, &doc, Xbase));
		if(!linked)
		{
			colour = data.GetVector(MATERIAL_COLOR_COLOR) * data.GetFloat(MATERIAL_COLOR_BRIGHTNESS);
			return true;
		}
		if(linked->InitRender(InitRenderStruct(&doc)) != INITRENDERRESULT_OK)
			return false;
		shader = linked;
		return true;
	}

	Vector sample(ChannelData& cd) const { return shader ? shader->Sample(&cd) : colour; }

private:
	BaseMaterial& material;
	BaseDocument& doc;
	BaseShader* shader = nullptr;
	Vector colour;
};

int32_t toByte(double value)
{
	return (int32_t)std::lround(std::clamp(value, 0.0, 1.0) * 255.0);
}

// The mean colour of (2^n)^2 samples spread evenly over pixel (px, py),
// each at the UV that the triangle's weights give there (outside the
// triangle the weights run on, which keeps the UV that of the sample's
// place in the picture).
Vector pixelColour(const Triangle& t, int32_t px, int32_t py, int32_t superSampling, const ColourChannel& channel)
{
	const int32_t steps = 1 << superSampling;
	ChannelData cd;
	cd.n = t.normal;
	// The view looks straight at the surface.
	cd.d = -t.normal;
	Vector sum;
	for(int32_t j = 0; j < steps; ++j)
	{
		for(int32_t i = 0; i < steps; ++i)
		{
			const auto w = t.weights(px + (i + 0.5) / steps, py + (j + 0.5) / steps);
			cd.p = t.uv[0] * w[0] + t.uv[1] * w[1] + t.uv[2] * w[2];
			sum += channel.sample(cd);
		}
	}
	return sum / (double)(steps * steps);
}

// Sets the pixel and, in a picture with alpha, makes it opaque.
void paint(BaseBitmap& bmp, int32_t x, int32_t y, int32_t r, int32_t g, int32_t b)
{
	bmp.SetPixel(x, y, r, g, b);
	if(BaseBitmap* alpha = bmp.GetInternalChannel())
		bmp.SetAlphaPixel(alpha, x, y, 255);
}

// Grows the painted area by one ring of pixels: each unpainted pixel next to
// a painted one takes the colour of its nearest painted neighbour (a side
// before a corner; among equals the first of left, right, top, bottom).
// False when no pixel was added.
bool growBorder(BaseBitmap& bmp, std::vector<char>& painted)
{
	static const int32_t around[8][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
	const int32_t width = bmp.GetBw(), height = bmp.GetBh();
	std::vector<char> grown = painted;
	bool added = false;
	for(int32_t y = 0; y < height; ++y)
	{
		for(int32_t x = 0; x < width; ++x)
		{
			if(painted[(size_t)y * width + x])
				continue;
			for(const auto& step : around)
			{
				const int32_t nx = x + step[0], ny = y + step[1];
				if(nx < 0 || ny < 0 || nx >= width || ny >= height || !painted[(size_t)ny * width + nx])
					continue;
				uint16_t r, g, b;
				bmp.GetPixel(nx, ny, &r, &g, &b);
				paint(bmp, x, y, r, g, b);
				grown[(size_t)y * width + x] = 1;
				added = true;
				break;
			}
		}
	}
	painted.swap(grown);
	return added;
}

BaseDocument* failure(BAKE_TEX_ERR& error, BAKE_TEX_ERR code)
{
	error = code;
	return nullptr;
}

} // namespace

BaseDocument* InitBakeTexture(BaseDocument* doc, TextureTag* textag, UVWTag* uvw, UVWTag* destUvw,
	const BaseContainer&, BAKE_TEX_ERR* err, BaseThread*)
{
	BAKE_TEX_ERR ignored;
	BAKE_TEX_ERR& error = err ? *err : ignored;
	error = BAKE_TEX_ERR_NONE;
	if(!doc)
		return failure(error, BAKE_TEX_ERR_NO_DOC);
	if(!textag)
		return failure(error, BAKE_TEX_ERR_NO_TEXTURE_TAG);
	// Baking from one layout into another is the application's; here the
	// picture is laid out by uvw alone.
	if(!uvw || (destUvw && destUvw != uvw))
		return failure(error, BAKE_TEX_ERR_NO_UVW_TAG);
	const BaseMaterial* material = textag->GetMaterial();
	if(!material || material->GetType() != Mmaterial)
		return failure(error, BAKE_TEX_ERR_TEXTURE_MISSING);
	const BaseObject* op = textag->GetObject();
	PolygonObject* object = op ? polygonCopy(*op) : nullptr;
	if(!object)
		return failure(error, BAKE_TEX_ERR_NO_OBJECT);

	BakeDocument* bake = new BakeDocument();
	bake->SetDocumentPath(doc->GetDocumentPath());
	bake->SetDocumentName(doc->GetDocumentName());
	bake->SetFps(doc->GetFps());
	bake->SetTime(doc->GetTime());
	// The bake is of this object's polygons alone.
	while(BaseObject* child = object->GetDown())
		BaseObject::Free(child);
	bake->InsertObject(object, nullptr, nullptr);
	// Where the object is in the world, for the normals its samples get.
	object->SetMl(op->GetMg());
	bake->object = object;

	BaseMaterial* materialCopy = material->GetClone();
	TextureTag* tagCopy = textag->GetClone();
	UVWTag* uvwCopy = uvw->GetClone();
	if(!materialCopy || !tagCopy || !uvwCopy)
	{
		BaseMaterial::Free(materialCopy);
		TextureTag::Free(tagCopy);
		UVWTag::Free(uvwCopy);
		BaseDocument* failed = bake;
		BaseDocument::Free(failed);
		return failure(error, BAKE_TEX_ERR_NO_MEM);
	}
	bake->InsertMaterial(materialCopy);
	bake->material = materialCopy;
	// The copy keeps the one texture tag and the one layout that the bake
	// is about, so that nothing in it links into the source document.
	freeTags(*object, Ttexture);
	freeTags(*object, Tuvw);
	tagCopy->SetMaterial(materialCopy);
	object->InsertTag(tagCopy);
	object->InsertTag(uvwCopy, tagCopy);
	bake->uvw = uvwCopy;
	return bake;
}

BAKE_TEX_ERR BakeTexture(BaseDocument* bakeDoc, const BaseContainer& settings, BaseBitmap* bmp, BaseThread* thread,
	BakeProgressHook hook, BakeProgressInfo* info)
{
	if(!bakeDoc)
		return BAKE_TEX_ERR_NO_DOC;
	BakeDocument* doc = dynamic_cast<BakeDocument*>(bakeDoc);
	if(!doc)
		return BAKE_TEX_ERR_NO_RENDER_DOC;
	const int32_t width = settings.GetInt32(BAKE_TEX_WIDTH), height = settings.GetInt32(BAKE_TEX_HEIGHT);
	if(!bmp || width < 1 || height < 1 || bmp->GetBw() != width || bmp->GetBh() != height)
		return BAKE_TEX_ERR_WRONG_BITMAP;
	const int32_t superSampling = std::clamp(settings.GetInt32(BAKE_TEX_SUPERSAMPLING), 0, maxSuperSampling);
	const int32_t border = std::max(0, settings.GetInt32(BAKE_TEX_PIXELBORDER));
	const TextureTag* tag = static_cast<const TextureTag*>(doc->object->GetTag(Ttexture));

	ColourChannel channel(*doc->material, *doc);
	if(!channel.init())
		return BAKE_TEX_ERR_TEXTURE_MISSING;
	const std::vector<Triangle> triangles = bakeTriangles(*doc, *tag, width, height);

	// The triangles by the first row they reach, and those that reach the
	// current row.
	std::vector<std::vector<int32_t>> startingAt(height);
	for(int32_t i = 0; i < (int32_t)triangles.size(); ++i)
		startingAt[triangles[i].firstRow].push_back(i);
	std::vector<int32_t> active;
	std::vector<char> painted((size_t)width * height, 0);
	BakeProgressInfo ownInfo;
	BakeProgressInfo& progress = info ? *info : ownInfo;

	for(int32_t y = 0; y < height; ++y)
	{
		if(thread && thread->TestBreak())
			return BAKE_TEX_ERR_USERBREAK;
		active.erase(std::remove_if(active.begin(), active.end(), [&](int32_t i) { return triangles[i].lastRow < y; }),
			active.end());
		active.insert(active.end(), startingAt[y].begin(), startingAt[y].end());
		for(const int32_t i : active)
		{
			const Triangle& t = triangles[i];
			for(int32_t x = t.firstColumn; x <= t.lastColumn; ++x)
			{
				char& done = painted[(size_t)y * width + x];
				if(done)
					continue;
				const auto w = t.weights(x + 0.5, y + 0.5);
				if(w[0] < -1e-9 || w[1] < -1e-9 || w[2] < -1e-9)
					continue;
				const Vector colour = pixelColour(t, x, y, superSampling, channel);
				paint(*bmp, x, y, toByte(colour.x), toByte(colour.y), toByte(colour.z));
				done = 1;
			}
		}
		if(hook)
		{
			progress.progress = (double)(y + 1) / height;
			hook(&progress);
		}
	}
	for(int32_t ring = 0; ring < border; ++ring)
	{
		if(thread && thread->TestBreak())
			return BAKE_TEX_ERR_USERBREAK;
		// Once a ring adds nothing (the picture is full, or nothing was
		// baked), no later one will.
		if(!growBorder(*bmp, painted))
			break;
	}
	return BAKE_TEX_ERR_NONE;
}
