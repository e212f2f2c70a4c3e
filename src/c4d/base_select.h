#pragma once

#include <cstdint>
#include <vector>

// A selection of element indices (points, polygons), kept as sorted,
// disjoint, non-touching ranges: selecting 0 to 999 costs one range.
class BaseSelect
{
public:
	// False, changing nothing, for a negative index or an empty range.
	bool Select(int32_t i) { return SelectAll(i, i); }
	bool Deselect(int32_t i) { return DeselectAll(i, i); }
	// Adds, or takes away, min to max inclusive.
	bool SelectAll(int32_t min, int32_t max);
	bool DeselectAll(int32_t min, int32_t max);
	void DeselectAll() { ranges.clear(); }

	bool IsSelected(int32_t i) const;
	// The number of selected indices, at most the largest int32.
	int32_t GetCount() const;

	// The ranges, ascending. GetRange gives range seg clipped to indices
	// below maxElements; false when seg is past the last range or the range
	// starts at maxElements or beyond.
	int32_t GetSegments() const { return (int32_t)ranges.size(); }
	bool GetRange(int32_t seg, int32_t maxElements, int32_t* a, int32_t* b) const;

	bool operator==(const BaseSelect& o) const;
	bool operator!=(const BaseSelect& o) const { return !(*this == o); }

private:
	struct Range
	{
		int32_t min, max;
	};

	std::vector<Range> ranges;
};
