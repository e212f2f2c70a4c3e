#pragma once

// Helpers shared by the tests of the reader: documents from text, and the
// message of a failure.

#include "support/exceptions.h"
#include "support/failures.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <string>

namespace VelornTest
{

// A document parsed from text the way scene files are read, white space
// kept. Fails the test if the text is not well-formed.
class XMLText
{
public:
	explicit XMLText(const std::string& text)
	{
		TiXmlBase::SetCondenseWhiteSpace(false);
		doc.Parse(text.c_str());
		EXPECT_FALSE(doc.Error()) << doc.ErrorDesc() << " in " << text;
	}

	const TiXmlElement& root() const { return *doc.RootElement(); }

private:
	TiXmlDocument doc;
};

} // namespace VelornTest
