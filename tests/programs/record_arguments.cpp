// Stands in for the renderer in tests that start it: writes its arguments,
// one a line, to the file that the environment variable
// VELORN_RECORD_ARGUMENTS names, and ends.
//
// With VELORN_RECORD_PNG set (not empty) it also renders as the renderer would for a
// preview: it reads the IES profile that the scene (the last argument)
// names, and writes a 4 by 4 orange PNG where "-o" points. A profile that
// cannot be read or is cut short ends it with exit code 3 and no picture.

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace
{

std::string readText(const std::string& path)
{
	std::ifstream in(path, std::ios::binary);
	std::stringstream text;
	text << in.rdbuf();
	return in ? text.str() : std::string();
}

// The text of the first <path> inside the first <ies_profile> of the scene.
std::string iesPath(const std::string& scene)
{
	const size_t profile = scene.find("<ies_profile>");
	if(profile == std::string::npos)
		return std::string();
	const size_t open = scene.find("<path>", profile);
	const size_t close = scene.find("</path>", open);
	if(open == std::string::npos || close == std::string::npos)
		return std::string();
	return scene.substr(open + 6, close - open - 6);
}

// Whether the profile holds all the numbers its counts promise: after the
// TILT line, ten numbers (of which the fourth and fifth count the vertical
// and horizontal angles), three more, the angles and a candela value for
// each pair of angles.
bool profileComplete(const std::string& path)
{
	const std::string text = readText(path);
	const size_t tilt = text.find("TILT=");
	if(tilt == std::string::npos)
		return false;
	std::istringstream numbers(text.substr(text.find('\n', tilt) + 1));
	std::vector<double> values;
	double v;
	while(numbers >> v)
		values.push_back(v);
	if(values.size() < 13)
		return false;
	const size_t vertical = (size_t)values[3], horizontal = (size_t)values[4];
	return values.size() >= 13 + vertical + horizontal + vertical * horizontal;
}

void putBig(std::string& out, uint32_t v)
{
	for(int shift = 24; shift >= 0; shift -= 8)
		out += (char)((v >> shift) & 0xFF);
}

void chunk(std::string& png, const char* type, const std::string& data)
{
	putBig(png, (uint32_t)data.size());
	const std::string body = std::string(type, 4) + data;
	png += body;
	putBig(png, (uint32_t)crc32(0, reinterpret_cast<const Bytef*>(body.data()), (uInt)body.size()));
}

bool writePng(const std::string& path)
{
	const int size = 4;
	std::string header;
	putBig(header, size);
	putBig(header, size);
	header += std::string("\x08\x02\x00\x00\x00", 5); // 8 bits, RGB, no interlace
	std::string rows;
	for(int y = 0; y < size; ++y)
	{
		rows += '\0';
		for(int x = 0; x < size; ++x)
			rows += std::string("\xff\x80\x00", 3);
	}
	uLongf packed_size = compressBound((uLong)rows.size());
	std::string packed(packed_size, '\0');
	if(compress(reinterpret_cast<Bytef*>(&packed[0]), &packed_size, reinterpret_cast<const Bytef*>(rows.data()),
		   (uLong)rows.size()) != Z_OK)
		return false;
	packed.resize(packed_size);
	std::string png("\x89PNG\r\n\x1a\n", 8);
	chunk(png, "IHDR", header);
	chunk(png, "IDAT", packed);
	chunk(png, "IEND", std::string());
	std::ofstream out(path, std::ios::binary);
	out << png;
	return (bool)out;
}

// Renders the preview: exit code 0 with the picture, 3 for a bad profile.
int renderPreview(int argc, char** argv)
{
	std::string image;
	for(int i = 1; i + 1 < argc; ++i)
		if(std::strcmp(argv[i], "-o") == 0)
			image = argv[i + 1];
	if(argc < 2 || !profileComplete(iesPath(readText(argv[argc - 1]))))
		return 3;
	return image.empty() || writePng(image) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
	const char* record = std::getenv("VELORN_RECORD_ARGUMENTS");
	if(!record)
		return 2;
	// Written under another name and renamed, so that a reader never sees
	// half the arguments.
	const std::string partial = std::string(record) + ".partial";
	FILE* out = std::fopen(partial.c_str(), "w");
	if(!out)
		return 1;
	for(int i = 0; i < argc; ++i)
		std::fprintf(out, "%s\n", argv[i]);
	std::fclose(out);
	if(std::rename(partial.c_str(), record) != 0)
		return 1;
	const char* png = std::getenv("VELORN_RECORD_PNG");
	return png && *png ? renderPreview(argc, argv) : 0;
}
