#include "export/render_queue.h"

#include "support/platform.h"

#include <tinyxml.h>

#include <cstdio>

namespace
{

// A number as the queue writes it: printf's "%08f", in the C library's
// own locale, whose decimal point the program never changes.
std::string queueNumber(double value)
{
	char text[64];
	std::snprintf(text, sizeof(text), "%08f", value);
	return text;
}

void addText(TiXmlElement& parent, const char* name, const std::string& text)
{
	TiXmlElement element(name);
	element.InsertEndChild(TiXmlText(text.c_str()));
	parent.InsertEndChild(element);
}

} // namespace

RenderQueue::RenderQueue() : xml(std::make_unique<TiXmlDocument>())
{
	xml->InsertEndChild(TiXmlDeclaration("1.0", "utf-8", ""));
	xml->InsertEndChild(TiXmlElement("render_queue"));
}

RenderQueue::~RenderQueue() = default;

void RenderQueue::addItem(const Filename& scene, const Filename& output, double halt_time, double halt_spp, int32_t seed)
{
	TiXmlElement item("item");
	addText(item, "scene_path", scene.GetString().GetStdString());
	if(output.Content())
		addText(item, "output_path", output.GetString().GetStdString());
	addText(item, "halt_time", queueNumber(halt_time));
	addText(item, "halt_spp", queueNumber(halt_spp));
	addText(item, "seed", std::to_string(seed));
	xml->RootElement()->InsertEndChild(item);
}

bool RenderQueue::save(const Filename& file) const
{
	// Written beside under another name and renamed when whole, so that no
	// renderer reads half a queue.
	const std::string path = file.GetString().GetStdString();
	const std::string partial = path + ".partial";
	if(xml->SaveFile(partial.c_str()) && Velorn::Platform::renamePath(partial, path))
		return true;
	Velorn::Platform::removeFile(partial);
	return false;
}
