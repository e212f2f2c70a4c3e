#pragma once

#include <cstddef>
#include <string>

namespace Velorn
{

// Follows how deep the elements of an XML text nest, from its tags alone,
// fed in pieces of any size. TinyXML reads and frees elements recursively,
// so a text that nests them deeply enough runs the thread out of stack
// before any check of a reader could see it: every text goes through this
// first (VelornXMLDoc does it for files). Comments, CDATA sections, processing
// instructions and declarations are passed over, so that a '<' in them
// (a comparison in a shader program) opens nothing.
class XMLNestingCheck
{
public:
	// Far deeper than any scene file nests, and far below what TinyXML
	// needs to run out of even a small thread stack.
	static const size_t max_depth = 256;

	// source names the text in the message.
	explicit XMLNestingCheck(const std::string& source_) : source(source_) {}

	// Throws SceneParserExcep at the first start tag past max_depth.
	void feed(const char* bytes, size_t count);

	static void checkText(const std::string& text, const std::string& source);

private:
	enum class State
	{
		Text,
		Open,          // after '<'
		StartTag,      // within <name ...
		Quoted,        // within an attribute value of a start tag
		Bang,          // after "<!", telling a comment, a CDATA section and a declaration apart
		Comment,       // until "-->"
		CData,         // until "]]>"
		Instruction,   // until "?>"
		SkipTag        // an end tag or a declaration, until '>'
	};

	void step(char c);
	void openElement();
	void bang(char c);

	std::string source;
	State state = State::Text;
	size_t depth = 0;
	char previous = 0;  // the character before this one within a construct
	char quote = 0;     // the quote that opened an attribute value
	std::string bang_text; // what follows "<!" while it is being told apart
	char last[2] = {0, 0}; // the two characters before this one, for the ends of comments, CDATA and instructions
};

} // namespace Velorn
