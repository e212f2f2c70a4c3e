#pragma once

#include "support/exceptions.h"
#include "support/failures.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace VelornTest
{

// Runs f and expects an exception of type E with exactly this message.
template <class E, class F>
void expectFailure(F&& f, const std::string& message)
{
	EXPECT_EQ(VelornTest::failureOf<E>(f), message);
}

// Runs f and expects a VelornException with exactly this message.
template <class F>
void expectVelornError(F&& f, const std::string& message)
{
	expectFailure<Velorn::VelornException>(f, message);
}

// Runs f and expects a ModelFormatDecoderExcep with exactly this message.
template <class F>
void expectDecoderError(F&& f, const std::string& message)
{
	expectFailure<Velorn::ModelFormatDecoderExcep>(f, message);
}

// Lays out little-endian words, floats and length-prefixed strings by hand,
// so that tests state the bytes they expect without help from the code under
// test.
class Bytes
{
public:
	Bytes& u32(uint32_t word)
	{
		for(int shift = 0; shift < 32; shift += 8)
			s.push_back((char)((word >> shift) & 0xFF));
		return *this;
	}
	Bytes& f32(float f)
	{
		uint32_t bits;
		std::memcpy(&bits, &f, sizeof(bits));
		return u32(bits);
	}
	Bytes& raw(const std::string& bytes)
	{
		s += bytes;
		return *this;
	}
	Bytes& str(const std::string& text) { return u32((uint32_t)text.size()).raw(text); }

	const std::string& bytes() const { return s; }

private:
	std::string s;
};

} // namespace VelornTest
