#include "reader/xml_nesting.h"

#include "support/exceptions.h"
#include "support/string_utils.h"

#include <cstdio>
#include <cstring>

namespace Velorn
{

namespace
{

const char comment_start[] = "--";
const char cdata_start[] = "[CDATA[";

// True when text is a beginning of start (or all of it).
bool beginsLike(const std::string& text, const char* start)
{
	return text.size() <= std::strlen(start) && std::strncmp(text.c_str(), start, text.size()) == 0;
}

} // namespace

void XMLNestingCheck::feed(const char* bytes, size_t count)
{
	for(size_t i = 0; i < count; ++i)
	{
		step(bytes[i]);
		last[0] = last[1];
		last[1] = bytes[i];
	}
}

void XMLNestingCheck::step(char c)
{
	switch(state)
	{
	case State::Text:
		if(c == '<')
			state = State::Open;
		break;
	case State::Open:
		if(c == '/')
		{
			depth -= depth > 0 ? 1 : 0;
			state = State::SkipTag;
		}
		else if(c == '!')
		{
			bang_text.clear();
			state = State::Bang;
		}
		else if(c == '?')
			state = State::Instruction;
		else
		{
			previous = c;
			state = State::StartTag;
		}
		break;
	case State::StartTag:
		if(c == '"' || c == '\'')
		{
			quote = c;
			state = State::Quoted;
		}
		else if(c == '>')
		{
			if(previous != '/')
				openElement();
			state = State::Text;
		}
		previous = c;
		break;
	case State::Quoted:
		if(c == quote)
			state = State::StartTag;
		break;
	case State::Bang:
		bang(c);
		break;
	case State::Comment:
		if(c == '>' && last[0] == '-' && last[1] == '-')
			state = State::Text;
		break;
	case State::CData:
		if(c == '>' && last[0] == ']' && last[1] == ']')
			state = State::Text;
		break;
	case State::Instruction:
		if(c == '>' && last[1] == '?')
			state = State::Text;
		break;
	case State::SkipTag:
		if(c == '>')
			state = State::Text;
		break;
	}
}

void XMLNestingCheck::bang(char c)
{
	bang_text.push_back(c);
	// The two characters of the start must not count as the end of the
	// comment or section: "<!-->" is no whole comment.
	last[0] = last[1] = 0;
	if(bang_text == comment_start)
		state = State::Comment;
	else if(bang_text == cdata_start)
		state = State::CData;
	else if(!beginsLike(bang_text, comment_start) && !beginsLike(bang_text, cdata_start))
		state = c == '>' ? State::Text : State::SkipTag;
}

void XMLNestingCheck::openElement()
{
	if(++depth > max_depth)
		throw SceneParserExcep("Elements nest more than " + toString((uint32_t)max_depth) + " levels deep in " + source +
							   "; it is not read.");
}

void XMLNestingCheck::checkText(const std::string& text, const std::string& source)
{
	XMLNestingCheck(source).feed(text.data(), text.size());
}

} // namespace Velorn
