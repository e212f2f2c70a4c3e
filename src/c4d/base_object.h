#pragma once

#include "c4d/base_list.h"
#include "c4d/base_tag.h"
#include "c4d/keyframe_track.h"
#include "c4d/vector_matrix.h"

#include <memory>

class BaseDocument;
class LayerObject;
struct LayerData;

// Object types whose numbers the plug-in relies on (it tests documents and
// caches for them by number).
enum
{
	Opolygon = 5100,
	Olight = 5102,
	Ocamera = 5103,
	Oinstance = 5126,
	Osphere = 5160,
	Oplane = 5168,
	// The base type of every object (BaseObject::IsInstanceOf).
	Obase = 5155,
	// An empty object of the host's that a generator can hand back as its
	// cache when it has nothing to show of its own.
	Oemptycache = 272,
	// A host type that the export skips by number, with its caches, while
	// still walking its children; what it is in the host does not matter.
	Oskipped = 1011146,
};

// Object types that the plug-in only names. Their numbers follow the
// application's numbering as far as we know it; nothing in the plug-in
// depends on the values, only document files store them.
enum
{
	Onull = 5140,
	Ofloor = 5104,
	Osky = 5105,
	Ocube = 5159,
	Odisc = 5164,
	Ocylinder = 5170,
	Olayer = 100004801,
};

// Info flag of objects that only make sense for one view, such as a floor.
enum
{
	OBJECT_CAMERADEPENDENT = 0x200,
};

// State bit of an object that is a cache the host built from its
// generator's parameters (BaseDocument::ExecutePasses), unlike a cache that
// a document file brought: files keep only the latter, since the host makes
// the former again. A bit of this host's own.
enum
{
	BIT_BUILTCACHE = 1 << 24,
};

// The editor and render visibility of an object: on, off, or as its parent.
enum
{
	MODE_ON = 0,
	MODE_OFF = 1,
	MODE_UNDEF = 2,
};

// An object of the document's object tree: a local matrix relative to its
// parent, visibility modes, a tag list, and the caches a generator or
// deformer leaves. An object owns its tags and its caches.
class BaseObject : public TypedList2D<BaseObject>
{
public:
	explicit BaseObject(int32_t type_);

	// A free object of the given type; Opolygon gives a PolygonObject.
	static BaseObject* Alloc(int32_t type);

	// Every object is an instance of Obase besides its own type.
	bool IsInstanceOf(int32_t id) const override { return id == Obase || BaseList2D::IsInstanceOf(id); }

	// A free copy of the object with its children: name, parameters, the
	// shaders it owns, matrix, modes, keyframe tracks and copies of its tags
	// (each by its GetClone), and the data of its class (the points and
	// polygons of a polygon object). Caches are left out, as the host builds
	// a generator's cache again. A child whose type is no longer known is
	// left out; null when the object's own type is not.
	virtual BaseObject* GetClone() const;

	const Matrix& GetMl() const { return ml; }
	void SetMl(const Matrix& m) { ml = m; }
	// The matrix in world space: the local matrices of the parent chain, the
	// generator of a cache counting as the parent of the cache.
	Matrix GetMg() const;
	// The world matrix of the parent (of the generator for a cache); identity at the top.
	Matrix GetUpMg() const;
	// Sets the local matrix so that the world matrix becomes m.
	void SetMg(const Matrix& m) { ml = Invert(GetUpMg()) * m; }

	int32_t GetRenderMode() const { return renderMode; }
	void SetRenderMode(int32_t mode) { renderMode = mode; }
	int32_t GetEditorMode() const { return editorMode; }
	void SetEditorMode(int32_t mode) { editorMode = mode; }
	// Whether the object is enabled (the check mark of generators, deformers, lights).
	bool GetDeformMode() const { return deformMode; }
	void SetDeformMode(bool mode) { deformMode = mode; }

	BaseTag* GetFirstTag() const { return static_cast<BaseTag*>(tags.GetFirst()); }
	// The tag number nr (counting from 0) among the tags of the given type.
	BaseTag* GetTag(int32_t type, int32_t nr = 0) const;
	// Puts the tag after pred, or first when pred is null; the object owns it.
	void InsertTag(BaseTag* tag, BaseTag* pred = nullptr) { tags.Insert(tag, pred); }
	// A new tag of the given type, inserted as by InsertTag.
	BaseTag* MakeTag(int32_t type, BaseTag* pred = nullptr);

	// The object the generator made, and the one its deformers made of that.
	// The object takes the given free cache and frees the one before.
	BaseObject* GetCache() const { return cache.get(); }
	void SetCache(BaseObject* c) { adopt(cache, c); }
	BaseObject* GetDeformCache() const { return deformCache.get(); }
	void SetDeformCache(BaseObject* c) { adopt(deformCache, c); }
	// For the top object of a cache, the object that holds the cache.
	BaseObject* GetCacheParent() const { return cacheParent; }
	// For an object anywhere inside a cache, the object of the document that
	// the cache (through all nesting) was made for; null outside a cache. The
	// application checks a stale link when safe is set; here links are
	// never stale.
	BaseObject* GetOrigin(bool safe = false) const;

	// The keyframes of the object's position, rotation and scale, which
	// BaseDocument::AnimateObject applies to the local matrix.
	ObjectTracks& GetTracks() { return tracks; }
	const ObjectTracks& GetTracks() const { return tracks; }

	// The switches of the object's layer (GetLayerObject), or null without a layer.
	const LayerData* GetLayerData(BaseDocument* doc) const;

private:
	void adopt(std::unique_ptr<BaseObject>& slot, BaseObject* c);
	// The object whose world matrix this one's local matrix is relative to.
	BaseObject* matrixParent() const;

	Matrix ml;
	int32_t renderMode = MODE_UNDEF;
	int32_t editorMode = MODE_UNDEF;
	bool deformMode = true;
	GeListHead tags;
	std::unique_ptr<BaseObject> cache;
	std::unique_ptr<BaseObject> deformCache;
	BaseObject* cacheParent = nullptr;
	ObjectTracks tracks;
};
