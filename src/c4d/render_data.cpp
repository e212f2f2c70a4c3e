#include "c4d/render_data.h"

RenderData::RenderData() : TypedList2D(Rbase), videoPosts(this)
{
	GetDataInstance()->SetInt32(RDATA_XRES, 800);
	GetDataInstance()->SetInt32(RDATA_YRES, 600);
}
