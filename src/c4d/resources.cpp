#include "c4d/resources.h"

#include "c4d/description_file.h"

#include "support/file_utils.h"
#include "support/string_utils.h"

#include <limits>

namespace
{

bool isBlank(char c)
{
	return c == ' ' || c == '\t' || c == '\r';
}

// Reads one line of a string table, throwing a message without the place;
// the caller adds it.
class LineReader
{
public:
	explicit LineReader(const std::string& line_) : line(line_) {}

	// Whether the line holds no entry (blank or a comment).
	bool empty()
	{
		skipBlanks();
		return at == line.size() || line.compare(at, 2, "//") == 0;
	}

	int32_t id()
	{
		int64_t value = 0;
		size_t consumed = 0;
		if(!Velorn::parseInt64Prefix(line.data() + at, line.size() - at, value, consumed))
			throw ResourceExcep("expected an id");
		if(value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max())
			throw ResourceExcep("the id " + line.substr(at, consumed) + " does not fit 32 bits");
		at += consumed;
		return (int32_t)value;
	}

	std::string quotedText()
	{
		const size_t before = at;
		skipBlanks();
		if(at == before || at == line.size() || line[at] != '"')
			throw ResourceExcep("expected a quoted text after the id");
		std::string text;
		for(++at; at < line.size() && line[at] != '"'; ++at)
			text += line[at] == '\\' ? escaped() : line[at];
		if(at == line.size())
			throw ResourceExcep("the text has no closing quote");
		++at;
		return text;
	}

	void end()
	{
		skipBlanks();
		if(at != line.size())
			throw ResourceExcep("unexpected text after the closing quote");
	}

private:
	void skipBlanks()
	{
		while(at < line.size() && isBlank(line[at]))
			++at;
	}

	// The character that the escape at the current position stands for.
	char escaped()
	{
		if(++at == line.size())
			throw ResourceExcep("the text has no closing quote");
		switch(line[at])
		{
		case '"': return '"';
		case '\\': return '\\';
		case 'n': return '\n';
		}
		throw ResourceExcep(std::string("unknown escape \\") + line[at]);
	}

	const std::string& line;
	size_t at = 0;
};

} // namespace

StringTable StringTable::parse(const std::string& text, const std::string& source)
{
	StringTable table;
	size_t line_number = 0;
	for(size_t start = 0; start <= text.size(); ++line_number)
	{
		const size_t end = std::min(text.find('\n', start), text.size());
		const std::string line = text.substr(start, end - start);
		start = end + 1;
		try
		{
			LineReader reader(line);
			if(reader.empty())
				continue;
			const int32_t id = reader.id();
			const std::string string = reader.quotedText();
			reader.end();
			String unused;
			if(table.find(id, unused))
				throw ResourceExcep("the id " + Velorn::toString(id) + " is given twice");
			table.set(id, string);
		}
		catch(const ResourceExcep& e)
		{
			throw ResourceExcep(source + ":" + Velorn::toString((uint64_t)line_number + 1) + ": " + e.what());
		}
	}
	return table;
}

StringTable StringTable::load(const Filename& file)
{
	std::string text;
	Velorn::FileUtils::readEntireFile(file.GetString().GetStdString(), text);
	return parse(text, file.GetString().GetStdString());
}

void StringTable::set(int32_t id, const String& text)
{
	strings[id] = text;
}

bool StringTable::find(int32_t id, String& out) const
{
	const auto it = strings.find(id);
	if(it == strings.end())
		return false;
	out = it->second;
	return true;
}

HostResources& HostResources::get()
{
	static HostResources resources;
	return resources;
}

Filename HostResources::stringsFile(const Filename& module_dir)
{
	return module_dir + Filename("res") + Filename("strings_us") + Filename("c4d_strings.str");
}

Filename HostResources::descriptionFile(const Filename& module_dir, const String& symbol)
{
	return module_dir + Filename("res") + Filename("description") + Filename(symbol + String(".json"));
}

bool HostResources::init(const Filename& module_dir_)
{
	StringTable loaded;
	String failure;
	try
	{
		loaded = StringTable::load(stringsFile(module_dir_));
	}
	catch(const Velorn::MessageException& e)
	{
		failure = e.what();
	}
	{
		std::lock_guard<std::mutex> lock(descriptions_mutex);
		descriptions.clear();
	}
	std::lock_guard<std::mutex> lock(mutex);
	table = loaded;
	last_error = failure;
	module_dir = module_dir_;
	return !failure.Content();
}

void HostResources::setStrings(const StringTable& table_)
{
	std::lock_guard<std::mutex> lock(mutex);
	table = table_;
}

void HostResources::clear()
{
	{
		std::lock_guard<std::mutex> lock(descriptions_mutex);
		descriptions.clear();
	}
	std::lock_guard<std::mutex> lock(mutex);
	table = StringTable();
	last_error = String();
	module_dir = Filename();
}

bool HostResources::find(int32_t id, String& out) const
{
	std::lock_guard<std::mutex> lock(mutex);
	return table.find(id, out);
}

String HostResources::error() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return last_error;
}

Filename HostResources::moduleDirectory() const
{
	std::lock_guard<std::mutex> lock(mutex);
	return module_dir;
}

std::shared_ptr<const DescriptionFile> HostResources::description(const String& symbol, String& failure)
{
	failure = String();
	const Filename dir = moduleDirectory();
	std::lock_guard<std::mutex> lock(descriptions_mutex);
	const auto found = descriptions.find(symbol);
	if(found != descriptions.end())
		return found->second;
	std::shared_ptr<const DescriptionFile>& cached = descriptions[symbol];
	if(!dir.Content())
		// A path relative to the working directory would find whatever lies
		// there; without a module there are no descriptions.
		failure = String("the host has no module directory");
	else
	{
		try
		{
			cached = std::make_shared<const DescriptionFile>(DescriptionFile::load(descriptionFile(dir, symbol), symbol));
		}
		catch(const Velorn::MessageException& e)
		{
			failure = e.what();
		}
	}
	return cached;
}

String GeLoadString(int32_t id)
{
	String text;
	HostResources::get().find(id, text);
	return text;
}
