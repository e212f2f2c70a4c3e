#pragma once

#include "support/string_utils.h"

#include <cstdint>
#include <string>

namespace Velorn
{

// The identifier of a scene node: an unsigned 32-bit number. 0xFFFFFFFF is
// the invalid value, which every default constructed UID holds; the root of
// a scene has 0.
class UID
{
public:
	UID() = default;
	explicit UID(uint32_t v) : v_(v) {}

	static UID invalidUID() { return UID(); }

	uint32_t value() const { return v_; }
	bool valid() const { return v_ != INVALID; }
	std::string toString() const { return Velorn::toString(v_); }

	// Shifting by an offset leaves an invalid UID invalid.
	UID operator+(uint32_t offset) const { return valid() ? UID(v_ + offset) : UID(); }

	bool operator==(const UID& other) const { return v_ == other.v_; }
	bool operator!=(const UID& other) const { return v_ != other.v_; }
	bool operator<(const UID& other) const { return v_ < other.v_; }

private:
	static const uint32_t INVALID = 0xFFFFFFFFu;
	uint32_t v_ = INVALID;
};

// Tables keyed by UID put a key in bucket (value modulo bucket count).
struct UIDHash
{
	uint32_t operator()(const UID& uid) const { return uid.value(); }
};

} // namespace Velorn
