#pragma once

#include "c4d/base_select.h"
#include "c4d/base_tag.h"
#include "c4d/vector_matrix.h"

#include <cstdint>
#include <vector>

// The UV coordinates of one polygon's corners a, b, c, d; (u, v, 0) each.
struct UVWStruct
{
	Vector a, b, c, d;
};

// A tag of type Tuvw: one UVWStruct per polygon of its object, in polygon order.
class UVWTag : public BaseTag
{
public:
	UVWTag() : BaseTag(Tuvw) {}
	// A free tag with count records of zeros; null for a negative count.
	static UVWTag* Alloc(int32_t count);

	int32_t GetDataCount() const { return (int32_t)records.size(); }
	// Sets the record count, keeping the leading records; false, changing
	// nothing, for a negative count.
	bool Resize(int32_t count);
	const UVWStruct& Get(int32_t i) const { return records[i]; }
	void Set(int32_t i, const UVWStruct& uvw) { records[i] = uvw; }
	// The records as one array, for reading them at once.
	const UVWStruct* GetDataAddressR() const { return records.data(); }
	// A free tag with the same records (and parameters).
	UVWTag* GetClone() const override;

private:
	std::vector<UVWStruct> records;
};

// A tag of type Tpolygonselection or Tpointselection: a named set of the
// object's polygon or point indices (the tag's name is the selection's name).
class SelectionTag : public BaseTag
{
public:
	explicit SelectionTag(int32_t type_) : BaseTag(type_) {}
	// A free tag of one of the two selection types; null for any other type.
	static SelectionTag* Alloc(int32_t type);

	BaseSelect* GetBaseSelect() { return &selection; }
	const BaseSelect* GetBaseSelect() const { return &selection; }
	// A free tag of the same type, name and selection.
	SelectionTag* GetClone() const override;

private:
	BaseSelect selection;
};

// The parameters of a Phong tag (Tphong).
enum
{
	// Bool: normals are only shared across edges below the angle.
	PHONGTAG_PHONG_ANGLELIMIT = 1001,
	// Real, radians: the largest angle between two polygons that is smoothed.
	PHONGTAG_PHONG_ANGLE = 1002,
	// Bool: edges that the user broke are kept sharp.
	PHONGTAG_PHONG_USEEDGES = 1003,
};

// Sets the parameters a new Phong tag has in the host: limited to 80
// degrees, without broken edges.
void SetPhongTagDefaults(BaseContainer& data);
