#include "c4d/base_select.h"

#include <algorithm>
#include <limits>

namespace
{

bool isValid(int32_t min, int32_t max)
{
	return min >= 0 && min <= max;
}

} // namespace

bool BaseSelect::SelectAll(int32_t min, int32_t max)
{
	if(!isValid(min, max))
		return false;
	// Ranges that overlap or touch [min, max] are merged into it; the int64
	// keeps max + 1 from overflowing at the top index.
	auto first = std::find_if(ranges.begin(), ranges.end(), [min](const Range& r) { return (int64_t)r.max + 1 >= min; });
	auto last = std::find_if(first, ranges.end(), [max](const Range& r) { return r.min > (int64_t)max + 1; });
	if(first != last)
	{
		min = std::min(min, first->min);
		max = std::max(max, (last - 1)->max);
	}
	ranges.insert(ranges.erase(first, last), Range{min, max});
	return true;
}

bool BaseSelect::DeselectAll(int32_t min, int32_t max)
{
	if(!isValid(min, max))
		return false;
	// Every range is kept without the part in [min, max]: up to one piece
	// below min and one above max.
	std::vector<Range> kept;
	for(const Range& r : ranges)
	{
		if(r.min < min)
			kept.push_back(Range{r.min, std::min(r.max, min - 1)});
		if(r.max > max)
			kept.push_back(Range{std::max(r.min, max + 1), r.max});
	}
	ranges.swap(kept);
	return true;
}

bool BaseSelect::IsSelected(int32_t i) const
{
	return std::any_of(ranges.begin(), ranges.end(), [i](const Range& r) { return r.min <= i && i <= r.max; });
}

int32_t BaseSelect::GetCount() const
{
	// All of 0 to the top index is one more than an int32 holds.
	int64_t count = 0;
	for(const Range& r : ranges)
		count += (int64_t)r.max - r.min + 1;
	return (int32_t)std::min<int64_t>(count, std::numeric_limits<int32_t>::max());
}

bool BaseSelect::GetRange(int32_t seg, int32_t maxElements, int32_t* a, int32_t* b) const
{
	if(seg < 0 || seg >= GetSegments() || ranges[seg].min >= maxElements)
		return false;
	*a = ranges[seg].min;
	*b = std::min(ranges[seg].max, maxElements - 1);
	return true;
}

bool BaseSelect::operator==(const BaseSelect& o) const
{
	return std::equal(ranges.begin(), ranges.end(), o.ranges.begin(), o.ranges.end(),
		[](const Range& x, const Range& y) { return x.min == y.min && x.max == y.max; });
}
