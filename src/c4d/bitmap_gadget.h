#pragma once

#include "c4d/base_bitmap.h"
#include "c4d/description.h"
#include "c4d/ge_data.h"

#include <memory>

// The data of a bitmap gadget (CUSTOMDATATYPE_BITMAP_GADGET): the picture
// it shows, or none. A node hands it out from GetDParameter as
// GeData(CUSTOMDATATYPE_BITMAP_GADGET, data).
class BitmapGadgetData : public CustomDataType
{
public:
	BitmapGadgetData() = default;
	explicit BitmapGadgetData(std::shared_ptr<const BaseBitmap> bitmap_) : bitmap(std::move(bitmap_)) {}

	// The picture; null when the gadget shows none.
	const BaseBitmap* GetBitmap() const { return bitmap.get(); }

private:
	std::shared_ptr<const BaseBitmap> bitmap;
};

// The gadget data in a parameter's value; null when the value holds none.
inline const BitmapGadgetData* GetBitmapGadgetData(const GeData& data)
{
	return static_cast<const BitmapGadgetData*>(data.GetCustomDataType(CUSTOMDATATYPE_BITMAP_GADGET));
}
