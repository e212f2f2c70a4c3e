#include "c4d/base_document.h"

#include "c4d/atom_array.h"
#include "c4d/base_thread.h"
#include "c4d/polygon_object.h"
#include "c4d/primitives.h"
#include "c4d/world_preferences.h"

namespace
{

// Gives every primitive generator from op on (its siblings, and the children
// of all) that has no cache the cache it builds.
void buildPrimitiveCaches(BaseObject* op)
{
	for(; op; op = op->GetNext())
	{
		if(!op->GetCache() && IsPrimitiveType(op->GetType()))
		{
			if(BaseObject* cache = BuildPrimitive(*op))
			{
				cache->SetBit(BIT_BUILTCACHE);
				op->SetCache(cache);
			}
		}
		buildPrimitiveCaches(op->GetDown());
	}
}

} // namespace

BaseDocument::BaseDocument()
	: BaseList2D(Tbasedocument), objects(this), materials(this), layers(this), renderDatas(this),
	  renderData(RenderData::Alloc())
{
	renderDatas.InsertFirst(renderData);
}

void BaseDocument::InsertObject(BaseObject* op, BaseObject* parent, BaseObject* pred)
{
	if(pred)
		op->InsertAfter(pred);
	else if(parent)
		op->InsertUnder(parent);
	else
		objects.InsertFirst(op);
}

void BaseDocument::SetFps(int32_t fps_)
{
	if(fps_ >= 1)
		fps = fps_;
}

bool BaseDocument::SetUnit(int32_t unit_)
{
	if(unit_ < DOCUMENT_UNIT_KM || unit_ > DOCUMENT_UNIT_MM)
		return false;
	GetWorldContainerInstance()->SetInt32(WPREF_UNITS, unit_);
	return true;
}

int32_t BaseDocument::GetUnit() const
{
	const int32_t unit = GetWorldContainerInstance()->GetInt32(WPREF_UNITS, DOCUMENT_UNIT_CM);
	return unit >= DOCUMENT_UNIT_KM && unit <= DOCUMENT_UNIT_MM ? unit : DOCUMENT_UNIT_CM;
}

double BaseDocument::GetUnitScale() const
{
	static const double metres[] = {1000.0, 1.0, 0.01, 0.001};
	return metres[GetUnit() - DOCUMENT_UNIT_KM];
}

void BaseDocument::AnimateObject(BaseObject* op, const BaseTime& t, int32_t flags)
{
	if(!op)
		return;
	if(!op->GetTracks().IsEmpty())
		op->SetMl(op->GetTracks().Evaluate(op->GetMl(), t));
	if(flags & ANIMATEFLAGS_NO_CHILDREN)
		return;
	for(BaseObject* child = op->GetDown(); child; child = child->GetNext())
		AnimateObject(child, t, flags);
}

bool BaseDocument::ExecutePasses(BaseThread* bt, bool animation, bool, bool caches, int32_t)
{
	if(bt && bt->TestBreak())
		return false;
	if(animation)
	{
		for(BaseObject* op = GetFirstObject(); op; op = op->GetNext())
			AnimateObject(op, time, 0);
	}
	if(bt && bt->TestBreak())
		return false;
	if(caches)
		buildPrimitiveCaches(GetFirstObject());
	return true;
}

void BaseDocument::GetActiveMaterials(AtomArray& selection) const
{
	for(BaseMaterial* mat = GetFirstMaterial(); mat; mat = mat->GetNext())
		if(mat->GetBit(BIT_ACTIVE))
			selection.Append(mat);
}

namespace
{

// Calls f with every object of the tree below first, depth first.
template<typename F>
void walkObjects(BaseObject* first, const F& f)
{
	for(BaseObject* op = first; op; op = op->GetNext())
	{
		f(op);
		walkObjects(op->GetDown(), f);
	}
}

// The only node of the selection; null when it holds none or several.
BaseList2D* single(const AtomArray& selection)
{
	return selection.GetCount() == 1 ? selection.GetIndex(0) : nullptr;
}

} // namespace

void BaseDocument::GetActiveObjects(AtomArray& selection) const
{
	walkObjects(GetFirstObject(), [&](BaseObject* op) {
		if(op->GetBit(BIT_ACTIVE))
			selection.Append(op);
	});
}

BaseObject* BaseDocument::GetActiveObject() const
{
	AtomArray selection;
	GetActiveObjects(selection);
	return static_cast<BaseObject*>(single(selection));
}

void BaseDocument::GetActiveTags(AtomArray& selection) const
{
	walkObjects(GetFirstObject(), [&](BaseObject* op) {
		for(BaseTag* tag = op->GetFirstTag(); tag; tag = tag->GetNext())
			if(tag->GetBit(BIT_ACTIVE))
				selection.Append(tag);
	});
}

BaseTag* BaseDocument::GetActiveTag() const
{
	AtomArray selection;
	GetActiveTags(selection);
	return static_cast<BaseTag*>(single(selection));
}

BaseObject* BaseDocument::SearchObject(const String& name) const
{
	BaseObject* found = nullptr;
	walkObjects(GetFirstObject(), [&](BaseObject* op) {
		if(!found && op->GetName() == name)
			found = op;
	});
	return found;
}

void BaseDocument::SetActiveMaterial(BaseMaterial* mat, int32_t mode)
{
	if(mode == SELECTION_NEW)
		for(BaseMaterial* m = GetFirstMaterial(); m; m = m->GetNext())
			m->DelBit(BIT_ACTIVE);
	if(!mat)
		return;
	if(mode == SELECTION_SUB)
		mat->DelBit(BIT_ACTIVE);
	else
		mat->SetBit(BIT_ACTIVE);
}

bool BaseDocument::StartUndo()
{
	++undoDepth;
	return true;
}

bool BaseDocument::AddUndo(int32_t type, BaseList2D* node)
{
	if(undoDepth == 0 || !node)
		return false;
	openUndo.push_back({type, node, node->GetName(), node->GetType()});
	return true;
}

bool BaseDocument::EndUndo()
{
	if(undoDepth == 0)
		return false;
	if(--undoDepth == 0)
	{
		undoGroups.push_back(std::move(openUndo));
		openUndo.clear();
	}
	return true;
}
