#include "c4d/base_document.h"

#include "c4d/world_preferences.h"

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
