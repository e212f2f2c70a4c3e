#include "cli/preview_command.h"

#include "c4d/base_bitmap.h"
#include "c4d/c4d_thread.h"
#include "c4d/material_preview_host.h"
#include "c4d/render_document.h"
#include "c4d/special_events.h"
#include "cli/host_session.h"
#include "cli/render_command.h"
#include "materials/material_ids.h"
#include "support/exceptions.h"

#include <iterator>

namespace PreviewCommand
{

namespace
{

const int32_t quality_values[] = {MAT_PREVIEW_OFF, MAT_PREVIEW_LOW, MAT_PREVIEW_MEDIUM, MAT_PREVIEW_HIGH,
	MAT_PREVIEW_VERY_HIGH};
static_assert(std::size(quality_values) == std::size(quality_names), "one value a quality name");

int32_t qualityValue(const std::string& name)
{
	for(size_t i = 0; i < std::size(quality_names); ++i)
		if(name == quality_names[i])
			return quality_values[i];
	throw Velorn::VelornException("Unknown preview quality '" + name + "'.");
}

BaseMaterial* findMaterial(const BaseDocument& doc, const std::string& name)
{
	for(BaseMaterial* mat = doc.GetFirstMaterial(); mat; mat = mat->GetNext())
		if(mat->GetName().GetStdString() == name)
			return mat;
	throw Velorn::VelornException("The document has no material named '" + name + "'.");
}

// The host's preview thread: it asks for one picture.
class PreviewThread : public C4DThread
{
public:
	PreviewThread(MaterialPreview& preview_, BaseBitmap& bitmap_, const MaterialPreview::Settings& settings_)
		: preview(preview_), bitmap(bitmap_), settings(settings_)
	{
	}
	~PreviewThread() override { End(true); }

	MaterialPreviewResult result;

protected:
	void Main() override
	{
		settings.thread = Get();
		result = preview.generate(bitmap, settings);
	}

private:
	MaterialPreview& preview;
	BaseBitmap& bitmap;
	MaterialPreview::Settings settings;
};

} // namespace

std::string run(const Options& options)
{
	if(options.size < 1 || options.size > 1024)
		throw Velorn::VelornException("The preview's size must be from 1 to 1024 pixels.");
	const HostSession session(options.plugins, options.document);
	BaseMaterial* material = findMaterial(session.document(), options.material);
	if(!options.quality.empty())
		material->GetDataInstance()->SetInt32(MAT_PREVIEW_QUALITY, qualityValue(options.quality));
	RenderCommand::loadRendererLibrary(options.renderer_dir);

	BaseBitmap bitmap;
	MaterialPreviewResult result;
	{
		MaterialPreview preview(material);
		MaterialPreview::Settings settings;
		settings.width = settings.height = options.size;
		PreviewThread thread(preview, bitmap, settings);
		if(!thread.Start(String("Material Preview")))
			throw Velorn::VelornException("The preview thread cannot be started.");
		thread.Wait();
		result = thread.result;
	}
	// Messages the render posted to the main thread.
	RunMainThreadEvents();
	const std::string report = RenderCommand::hostReport() + "Preview: " + result.describe().GetStdString();
	if(result.step != MaterialPreviewStep::Answered || result.result != RENDERRESULT_OK)
		throw Velorn::VelornException(report);
	if(bitmap.Save(Filename(String(options.image)), FILTER_PNG, nullptr, SAVEBIT_NONE) != IMAGERESULT_OK)
		throw Velorn::VelornException(report + "\nThe picture cannot be saved as '" + options.image + "'.");
	return report + "\nImage: " + options.image + " (" + std::to_string(bitmap.GetBw()) + " x " +
		   std::to_string(bitmap.GetBh()) + ")\n";
}

} // namespace PreviewCommand
