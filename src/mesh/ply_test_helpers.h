#pragma once

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace VelornTest
{

// A PLY file described by its content, written out by hand in any of the
// three encodings, so that tests of the reader state their data once and do
// not lean on the code under test.
struct PlyTestProperty
{
	std::string type;
	std::string name;
	// The type of the list length; empty for a scalar property.
	std::string count_type = "";
};

struct PlyTestElement
{
	std::string name;
	std::vector<PlyTestProperty> properties;
	// Per instance, per property, the values: one for a scalar, the entries
	// of a list.
	std::vector<std::vector<std::vector<double>>> instances;
};

class PlyTestFile
{
public:
	explicit PlyTestFile(std::vector<PlyTestElement> elements) : elements(std::move(elements)) {}

	std::string header(const std::string& format) const
	{
		std::string h = "ply\nformat " + format + " 1.0\ncomment made by hand\n";
		for(const PlyTestElement& e : elements)
		{
			h += "element " + e.name + " " + std::to_string(e.instances.size()) + "\n";
			for(const PlyTestProperty& p : e.properties)
				h += p.count_type.empty() ? "property " + p.type + " " + p.name + "\n"
										  : "property list " + p.count_type + " " + p.type + " " + p.name + "\n";
		}
		return h + "end_header\n";
	}

	std::string ascii() const
	{
		std::ostringstream body;
		body.precision(17);
		for(const PlyTestElement& e : elements)
			for(const auto& instance : e.instances)
			{
				for(size_t p = 0; p < e.properties.size(); ++p)
				{
					if(!e.properties[p].count_type.empty())
						body << instance[p].size() << ' ';
					for(double v : instance[p])
						body << v << ' ';
				}
				body << '\n';
			}
		return header("ascii") + body.str();
	}

	std::string binary(bool big_endian) const
	{
		std::string body;
		for(const PlyTestElement& e : elements)
			for(const auto& instance : e.instances)
				for(size_t p = 0; p < e.properties.size(); ++p)
				{
					if(!e.properties[p].count_type.empty())
						body += encode(e.properties[p].count_type, (double)instance[p].size(), big_endian);
					for(double v : instance[p])
						body += encode(e.properties[p].type, v, big_endian);
				}
		return header(big_endian ? "binary_big_endian" : "binary_little_endian") + body;
	}

	static std::string encode(const std::string& type, double v, bool big_endian)
	{
		if(type == "char" || type == "int8")
			return bytes((int8_t)v, big_endian);
		if(type == "uchar" || type == "uint8")
			return bytes((uint8_t)v, big_endian);
		if(type == "short" || type == "int16")
			return bytes((int16_t)v, big_endian);
		if(type == "ushort" || type == "uint16")
			return bytes((uint16_t)v, big_endian);
		if(type == "int" || type == "int32")
			return bytes((int32_t)v, big_endian);
		if(type == "uint" || type == "uint32")
			return bytes((uint32_t)v, big_endian);
		if(type == "float" || type == "float32")
			return bytes((float)v, big_endian);
		return bytes(v, big_endian);
	}

private:
	// The value's bytes in the order asked for, on a little-endian host.
	template <class T>
	static std::string bytes(T value, bool big_endian)
	{
		std::string b(sizeof(T), '\0');
		std::memcpy(&b[0], &value, sizeof(T));
		return big_endian ? std::string(b.rbegin(), b.rend()) : b;
	}

	std::vector<PlyTestElement> elements;
};

} // namespace VelornTest
