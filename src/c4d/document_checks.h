#pragma once

#include "c4d/base_time.h"
#include "c4d/document_file.h"
#include "c4d/document_tables.h"
#include "c4d/vector_matrix.h"

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <string>

// The checked reads of JSON values for the document reader. Each read takes
// the value's place in the document (objects[2].params[1].value) and throws
// DocumentFileExcep "<file>: <place>: <what is wrong>" when the value is not
// of the expected form.
class DocumentChecks
{
public:
	using Json = nlohmann::ordered_json;

	explicit DocumentChecks(std::string file_) : file(std::move(file_)) {}

	// The JSON value of text; text that is not JSON throws DocumentFileExcep
	// "<file>:<line>:<column>: not valid JSON" with the place (from 1)
	// where reading stopped.
	static Json parse(const std::string& text, const std::string& file);

	const std::string& fileName() const { return file; }

	// The place of a member, and of an element, of the value at place.
	static std::string member(const std::string& place, const char* key);
	static std::string element(const std::string& place, size_t i);

	[[noreturn]] void fail(const std::string& place, const std::string& what) const;

	// The member key of the object j, or null.
	static const Json* find(const Json& j, const char* key);
	const Json& required(const Json& j, const std::string& place, const char* key) const;
	// j must be an object whose keys are among allowed.
	void checkKeys(const Json& j, const std::string& place, std::initializer_list<const char*> allowed) const;

	const Json& array(const Json& j, const std::string& place) const;
	std::string text(const Json& j, const std::string& place) const;
	bool boolean(const Json& j, const std::string& place) const;
	double number(const Json& j, const std::string& place) const;
	// An integer that fits 32 bits.
	int32_t integer(const Json& j, const std::string& place) const;
	// [x, y, z]
	Vector vector(const Json& j, const std::string& place) const;
	// [numerator, denominator] with a positive denominator.
	BaseTime time(const Json& j, const std::string& place) const;

	// The value that a table of DocumentTables gives the name j.
	template<size_t N>
	int32_t named(const DocumentTables::Name (&table)[N], const Json& j, const std::string& place) const
	{
		const std::string name = text(j, place);
		std::string choices;
		for(const DocumentTables::Name& entry : table)
		{
			if(name == entry.name)
				return entry.value;
			choices += std::string(choices.empty() ? "" : ", ") + entry.name;
		}
		fail(place, "unknown value '" + name + "' (one of " + choices + ")");
	}

private:
	std::string file;
};
