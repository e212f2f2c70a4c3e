#include "cli/draw_command.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_draw.h"
#include "cli/host_session.h"
#include "support/exceptions.h"

#include <cstdlib>

namespace DrawCommand
{

void parseSize(const std::string& text, int32_t& width, int32_t& height)
{
	auto fail = [&]() {
		throw Velorn::StringUtilsExcep("The view size '" + text + "' is not WIDTHxHEIGHT in pixels (1 to 16384 each).");
	};
	auto number = [&](const std::string& part) {
		char* end = nullptr;
		const long value = std::strtol(part.c_str(), &end, 10);
		if(part.empty() || *end != '\0' || value < 1 || value > 16384)
			fail();
		return (int32_t)value;
	};
	const size_t x = text.find('x');
	if(x == std::string::npos)
		fail();
	width = number(text.substr(0, x));
	height = number(text.substr(x + 1));
}

std::string run(const Options& options)
{
	int32_t width, height;
	parseSize(options.size, width, height);
	HostSession session(options.plugins, options.document);
	BaseDocument& doc = session.document();
	// The generators' caches, so that primitives show as the editor shows them.
	doc.ExecutePasses(nullptr, true, true, true, 0);

	BaseDraw view(width, height);
	DrawDocument(&doc, &view, DRAWDOCUMENT_HOST_OBJECTS);
	BaseBitmap bmp;
	if(!view.rasterise(bmp) || bmp.Save(Filename(String(options.image)), FILTER_PNG, nullptr, SAVEBIT_NONE) != IMAGERESULT_OK)
		throw Velorn::FileUtilsExcep("Cannot write the view to '" + options.image + "'.");
	return "Wrote " + options.image + " (" + std::to_string(width) + " x " + std::to_string(height) + " pixels, "
		+ std::to_string(view.calls().size()) + " drawing calls).\n";
}

} // namespace DrawCommand
