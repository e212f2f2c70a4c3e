#include "c4d/description_file.h"

#include "c4d/document_checks.h"
#include "c4d/resources.h"

#include "support/file_utils.h"

#include <map>

namespace
{

using Json = DocumentChecks::Json;

// An entry type of the file: its data type and, for links, the base type
// that the link accepts (0 for any node).
struct EntryType
{
	const char* name;
	int32_t dtype;
	int32_t accept;
};

constexpr EntryType entryTypes[] = {
	{"group", DTYPE_GROUP, 0},
	{"bool", DTYPE_BOOL, 0},
	{"long", DTYPE_LONG, 0},
	{"real", DTYPE_REAL, 0},
	{"vector", DTYPE_VECTOR, 0},
	{"color", DTYPE_COLOR, 0},
	{"string", DTYPE_STRING, 0},
	{"filename", DTYPE_FILENAME, 0},
	{"link", DTYPE_BASELISTLINK, 0},
	{"shader", DTYPE_BASELISTLINK, Xbase},
	{"material", DTYPE_BASELISTLINK, Mbase},
	{"button", DTYPE_BUTTON, 0},
	{"bitmap", CUSTOMDATATYPE_BITMAP_GADGET, 0},
};

// The numeric settings of ranges, by key.
struct RangeKey
{
	const char* key;
	int32_t setting;
};

constexpr RangeKey rangeKeys[] = {
	{"min", DESC_MIN},
	{"max", DESC_MAX},
	{"step", DESC_STEP},
	{"min_slider", DESC_MINSLIDER},
	{"max_slider", DESC_MAXSLIDER},
};

class Reader : DocumentChecks
{
public:
	Reader(const std::string& file_, const String& symbol_) : DocumentChecks(file_), symbol(symbol_) {}

	DescriptionFile read(const Json& root)
	{
		checkKeys(root, "", {"symbol", "entries"});
		const std::string declared = text(required(root, "", "symbol"), "symbol");
		if(declared != symbol.GetStdString())
			fail("symbol", "the file is the description of '" + symbol.GetStdString() + "', not of '" + declared +
				"'");
		DescriptionFile out;
		out.symbol = symbol;
		const Json& list = array(required(root, "", "entries"), "entries");
		for(size_t i = 0; i < list.size(); ++i)
			out.entries.push_back(entry(list[i], element("entries", i)));
		return out;
	}

private:
	DescriptionFileEntry entry(const Json& j, const std::string& place)
	{
		checkKeys(j, place, {"id", "type", "name", "group", "cycle", "min", "max", "step", "min_slider",
			"max_slider", "hide"});
		const std::string idPlace = member(place, "id");
		const int32_t id = integer(required(j, place, "id"), idPlace);
		if(id <= 0)
			fail(idPlace, "the id " + std::to_string(id) + " is not positive");
		if(dtypes.count(id))
			fail(idPlace, "the id " + std::to_string(id) + " is given twice");
		const EntryType& type = entryType(required(j, place, "type"), member(place, "type"));

		DescriptionFileEntry out{DescriptionEntry{DescID(DescLevel(id, type.dtype)), type.dtype,
			GetCustomDataTypeDefault(type.dtype)}, DescriptionText(), std::nullopt};
		BaseContainer& settings = out.entry.settings;
		if(const Json* name = find(j, "name"))
			out.name = label(*name, member(place, "name"));
		if(const Json* group = find(j, "group"))
			out.entry.parent = parentGroup(*group, member(place, "group"));
		settings.SetInt32(DESC_PARENTGROUP, out.entry.parent);
		readRange(settings, j, place, type);
		if(const Json* cycle = find(j, "cycle"))
		{
			if(type.dtype != DTYPE_LONG)
				fail(place, "cycle is only for entries of type long");
			out.cycle = readCycle(*cycle, member(place, "cycle"));
		}
		if(const Json* hide = find(j, "hide"))
			settings.SetBool(DESC_HIDE, boolean(*hide, member(place, "hide")));
		if(type.accept)
		{
			BaseContainer accept;
			accept.SetInt32(type.accept, type.accept);
			settings.SetContainer(DESC_ACCEPT, accept);
		}
		dtypes[id] = type.dtype;
		return out;
	}

	const EntryType& entryType(const Json& j, const std::string& place) const
	{
		const std::string name = text(j, place);
		std::string choices;
		for(const EntryType& type : entryTypes)
		{
			if(name == type.name)
				return type;
			choices += std::string(choices.empty() ? "" : ", ") + type.name;
		}
		fail(place, "unknown entry type '" + name + "' (one of " + choices + ")");
	}

	// A text, or an integer that names a string of the module's table.
	DescriptionText label(const Json& j, const std::string& place) const
	{
		DescriptionText out;
		if(j.is_number_integer())
			out.resource = integer(j, place);
		else if(j.is_string())
			out.text = String(j.get<std::string>());
		else
			fail(place, "expected a text or the id of a resource string");
		return out;
	}

	// Groups come before their entries, so that a file reads top down as
	// the attribute manager shows it and no group can sit inside itself.
	int32_t parentGroup(const Json& j, const std::string& place) const
	{
		const int32_t group = integer(j, place);
		if(group == 0)
			return 0;
		const auto found = dtypes.find(group);
		if(found == dtypes.end())
			fail(place, "no group " + std::to_string(group) + " is declared before this entry");
		if(found->second != DTYPE_GROUP)
			fail(place, "the entry " + std::to_string(group) + " is no group");
		return group;
	}

	void readRange(BaseContainer& settings, const Json& j, const std::string& place, const EntryType& type) const
	{
		for(const RangeKey& range : rangeKeys)
		{
			const Json* value = find(j, range.key);
			if(!value)
				continue;
			if(type.dtype != DTYPE_LONG && type.dtype != DTYPE_REAL)
				fail(place, std::string(range.key) + " is only for entries of type long or real");
			settings.SetFloat(range.setting, number(*value, member(place, range.key)));
		}
		checkOrder(settings, j, place, "min", DESC_MIN, "max", DESC_MAX);
		checkOrder(settings, j, place, "min_slider", DESC_MINSLIDER, "max_slider", DESC_MAXSLIDER);
		if(find(j, "step") && !(settings.GetFloat(DESC_STEP) > 0))
			fail(member(place, "step"), "the step must be positive");
	}

	// Both ends given, the lower may not lie above the upper.
	void checkOrder(const BaseContainer& settings, const Json& j, const std::string& place, const char* lowKey,
		int32_t low, const char* highKey, int32_t high) const
	{
		if(!find(j, lowKey) || !find(j, highKey) || settings.GetFloat(low) <= settings.GetFloat(high))
			return;
		fail(member(place, highKey), std::string(highKey) + " " + find(j, highKey)->dump() + " is below " + lowKey +
			" " + find(j, lowKey)->dump());
	}

	std::vector<std::pair<int32_t, DescriptionText>> readCycle(const Json& list, const std::string& place) const
	{
		std::vector<std::pair<int32_t, DescriptionText>> cycle;
		for(size_t i = 0; i < array(list, place).size(); ++i)
		{
			const Json& j = list[i];
			const std::string at = element(place, i);
			if(!j.is_array() || j.size() != 2)
				fail(at, "expected [value, label]");
			const int32_t value = integer(j[0], element(at, 0));
			for(const auto& earlier : cycle)
				if(earlier.first == value)
					fail(element(at, 0), "the value " + std::to_string(value) + " is given twice");
			cycle.emplace_back(value, label(j[1], element(at, 1)));
		}
		return cycle;
	}

	String symbol;
	// The data types of the entries read so far, by id.
	std::map<int32_t, int32_t> dtypes;
};

} // namespace

String DescriptionText::get() const
{
	return resource ? GeLoadString(*resource) : text;
}

DescriptionFile DescriptionFile::parse(const std::string& text, const std::string& file, const String& symbol)
{
	return Reader(file, symbol).read(DocumentChecks::parse(text, file));
}

DescriptionFile DescriptionFile::load(const Filename& file, const String& symbol)
{
	std::string text;
	Velorn::FileUtils::readEntireFile(file.GetString().GetStdString(), text);
	return parse(text, file.GetString().GetStdString(), symbol);
}

std::vector<DescriptionEntry> DescriptionFile::resolve() const
{
	std::vector<DescriptionEntry> out;
	out.reserve(entries.size());
	for(const DescriptionFileEntry& e : entries)
	{
		out.push_back(e.entry);
		BaseContainer& settings = out.back().settings;
		const String name = e.name.get();
		settings.SetString(DESC_NAME, name);
		settings.SetString(DESC_SHORT_NAME, name);
		if(e.cycle)
		{
			BaseContainer cycle;
			for(const auto& item : *e.cycle)
				cycle.SetString(item.first, item.second.get());
			settings.SetContainer(DESC_CYCLE, cycle);
		}
	}
	return out;
}
