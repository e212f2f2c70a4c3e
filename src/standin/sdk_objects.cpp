#include "standin/sdk_objects.h"

#include "scene/render_setting_values.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "standin/render_session.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

#include <cmath>
#include <thread>

namespace Velorn
{
namespace Standin
{

namespace
{

using F = InterfaceBase::Function;

template <class T>
T& self(InterfaceBase* object)
{
	return *static_cast<T*>(object);
}

template <class T>
void destroyObject(InterfaceBase* object)
{
	delete static_cast<T*>(object);
}

// Positions that the plug-in never calls do nothing.
void noOperation(InterfaceBase*) {}

// Puts f at a position of a table, converted first to the type that the
// plug-in calls it as, so that a function of another signature does not
// compile.
template <class Fn>
void put(F* table, size_t position, Fn f)
{
	table[position] = reinterpret_cast<F>(f);
}

// Each table is filled once, position by position; the functions take the
// object first, as the boundary's convention has it.
const F* messageTable()
{
	static F table[MessageTable::Size] = {};
	if(!table[0])
	{
		for(F& f : table)
			f = reinterpret_cast<F>(&noOperation);
		put<MessageTable::GetTypeFn>(
			table, MessageTable::GetType, [](InterfaceBase* o) { return self<MessageObject>(o).type; });
		put<MessageTable::GetTextFn>(
			table, MessageTable::GetText, [](InterfaceBase* o) -> const String* { return &self<MessageObject>(o).text; });
	}
	return table;
}

const F* rendererTable()
{
	static F table[RendererTable::Size] = {};
	if(!table[0])
	{
		using R = RendererObject;
		for(F& f : table)
			f = reinterpret_cast<F>(&noOperation);
		put<RendererTable::InitialiseFn>(table, RendererTable::Initialise,
			[](InterfaceBase* o, const String* sdk, const String* appdata) { return self<R>(o).initialise(*sdk, *appdata); });
		put<DoubleFn>(
			table, RendererTable::GetSamplesPerPixel, [](InterfaceBase* o) { return self<R>(o).getSamplesPerPixel(); });
		put<DoubleFn>(table, RendererTable::GetElapsedTime, [](InterfaceBase* o) { return self<R>(o).getElapsedTime(); });
		put<RendererTable::InitialiseWithSceneFn>(table, RendererTable::InitialiseWithScene,
			[](InterfaceBase* o, const Reference<SceneNodeRoot>* root, RenderBuffer* buffer, const Vector<String>* args) {
				return self<R>(o).initialiseWithScene(*root, buffer, *args);
			});
		put<VoidFn>(table, RendererTable::StartRendering, [](InterfaceBase* o) { self<R>(o).startRendering(); });
		put<VoidFn>(table, RendererTable::PauseRendering, [](InterfaceBase* o) { self<R>(o).pauseRendering(); });
		put<VoidFn>(table, RendererTable::ResumeRendering, [](InterfaceBase* o) { self<R>(o).resumeRendering(); });
		put<VoidFn>(table, RendererTable::StopRendering, [](InterfaceBase* o) { self<R>(o).stopRendering(); });
		put<RendererTable::UpdateSceneFn>(table, RendererTable::UpdateScene,
			[](InterfaceBase* o, const Reference<SceneNodeRoot>* root) { self<R>(o).updateScene(*root); });
		put<VoidFn>(table, RendererTable::BeginMessages, [](InterfaceBase* o) { self<R>(o).beginMessages(); });
		put<BoolFn>(table, RendererTable::AtEndOfMessages, [](InterfaceBase* o) { return self<R>(o).atEndOfMessages(); });
		put<RendererTable::NextMessageFn>(
			table, RendererTable::NextMessage, [](InterfaceBase* o) { return self<R>(o).nextMessage(); });
		put<VoidFn>(table, RendererTable::EndMessages, [](InterfaceBase* o) { self<R>(o).endMessages(); });
	}
	return table;
}

const F* toneMapperTable()
{
	static F table[ToneMapperTable::Size] = {};
	if(!table[0])
	{
		using T = ToneMapperObject;
		for(F& f : table)
			f = reinterpret_cast<F>(&noOperation);
		put<ToneMapperTable::InitialiseFn>(table, ToneMapperTable::Initialise,
			[](InterfaceBase* o, const String*, const String*, RenderBuffer* render_buffer, UInt8Buffer* bytes,
				FloatBuffer* floats, float gamma,
				String* error_out) { self<T>(o).initialise(render_buffer, bytes, floats, gamma, *error_out); });
		put<ToneMapperTable::SetParametersFn>(table, ToneMapperTable::SetParameters,
			[](InterfaceBase* o, const Reference<SceneNode>* tone, const Reference<SceneNode>* settings,
				const Reference<SceneNode>* camera, String* error_out) {
				self<T>(o).setParameters(tone->getPointer(), settings->getPointer(), camera->getPointer(), *error_out);
			});
		put<VoidFn>(table, ToneMapperTable::Update, [](InterfaceBase* o) { self<T>(o).update(); });
		put<BoolFn>(table, ToneMapperTable::IsDone, [](InterfaceBase* o) { return self<T>(o).isDone(); });
	}
	return table;
}

void emptyGPUList(InterfaceBase*, Reference<InterfaceBase>* out)
{
	auto* list = new GPUInfoList();
	list->destroy = &destroyObject<GPUInfoList>;
	*out = list;
}

const F* hardwareTable()
{
	static F table[HardwareInfoTable::Size] = {};
	if(!table[0])
	{
		for(F& f : table)
			f = reinterpret_cast<F>(&noOperation);
		put<HardwareInfoTable::GPUListFn>(table, HardwareInfoTable::GetGPUList, &emptyGPUList);
		put<HardwareInfoTable::GPUListFn>(table, HardwareInfoTable::GetSecondGPUList, &emptyGPUList);
	}
	return table;
}

std::mutex table_mutex;

} // namespace

MessageObject::MessageObject(int type_, const String& text_) : type(type_), text(text_)
{
	table = messageTable();
	destroy = &destroyObject<MessageObject>;
}

RendererObject::RendererObject()
{
	table = rendererTable();
	destroy = &destroyObject<RendererObject>;
}

RendererObject::~RendererObject()
{
	dropRender();
}

std::shared_ptr<ProgressiveRender> RendererObject::currentRender() const
{
	std::lock_guard<std::mutex> lock(render_mutex);
	return render;
}

void RendererObject::dropRender()
{
	std::shared_ptr<ProgressiveRender> old;
	{
		std::lock_guard<std::mutex> lock(render_mutex);
		old.swap(render);
	}
	// Stopped here, outside the lock: stopping joins the render's threads.
	if(old)
		old->stop();
}

int RendererObject::initialise(const String& sdk_dir_, const String& appdata_dir_)
{
	sdk_dir = sdk_dir_;
	appdata_dir = appdata_dir_;
	return 0;
}

int RendererObject::initialiseWithScene(const Reference<SceneNodeRoot>& root_, RenderBuffer* buffer_, const Vector<String>& args)
{
	dropRender();
	root = root_;
	buffer = buffer_;
	// The first word of the arguments is the scene's path, real or not;
	// relative texture paths are taken against its directory.
	scene_path = args.empty() ? std::string() : args[0].str();
	for(size_t i = 0; i + 1 < args.size(); ++i)
		if(args[i] == "-seed")
			seed = std::strtoull(args[i + 1].str().c_str(), nullptr, 10);
	return prepare() ? 0 : 1;
}

bool RendererObject::prepare()
{
	try
	{
		if(root.isNull() || buffer.isNull() || !buffer->master_buffer)
			throw Exception("No scene or no render buffer given.");
		scene = std::make_shared<TracerScene>(*root, FileUtils::getDirectory(scene_path));
		const TraceSettings& s = scene->getSettings();
		const MasterBuffer& mb = *buffer->master_buffer;
		if(mb.getFinalWidth() != s.width || mb.getFinalHeight() != s.height || mb.layers.size() < s.layer_count ||
			mb.getInternalWidth() != (s.width + 8) * s.super_sample_factor)
			throw Exception("The render buffer does not fit the scene's render settings.");
		auto new_render = std::make_shared<ProgressiveRender>(scene, *buffer->master_buffer, buffer->pixels_mutex,
			threadsFromSettings(*root), seed);
		const auto& rs = static_cast<const SceneNodeRenderSettings&>(*root->getRenderSettingsNode());
		// The render halts once samples per pixel pass the scene's halt,
		// which is how the plug-in's poll loop tests it: a halt of 4 ends
		// after the fifth pass, so that the loop sees more than 4.
		const double halt_spp = rs.settings.contains("halt_samples_per_pixel") ? rs.getDouble("halt_samples_per_pixel") : -1;
		new_render->setHalt(halt_spp > 0 ? std::floor(halt_spp) + 1 : halt_spp,
			rs.settings.contains("halt_time") ? rs.getDouble("halt_time") : -1);
		std::lock_guard<std::mutex> lock(render_mutex);
		render = std::move(new_render);
		return true;
	}
	catch(const MessageException& e)
	{
		postMessage(MessageTable::ErrorMessage, e.what());
	}
	catch(const std::exception& e)
	{
		postMessage(MessageTable::ErrorMessage, e.what());
	}
	scene.reset();
	dropRender();
	return false;
}

void RendererObject::updateScene(const Reference<SceneNodeRoot>& new_root)
{
	const std::shared_ptr<ProgressiveRender> former = currentRender();
	const bool was_running = former && former->isRunning();
	dropRender();
	root = new_root;
	if(buffer.nonNull() && buffer->master_buffer)
	{
		std::lock_guard<std::mutex> lock(buffer->pixels_mutex);
		for(MasterBufferLayer& layer : buffer->master_buffer->layers)
			std::fill(layer.image.getData(), layer.image.getData() + layer.image.numPixels() * 3, 0.0f);
	}
	if(prepare() && was_running)
		startRendering();
}

void RendererObject::startRendering()
{
	if(const auto r = currentRender())
		r->start();
}

void RendererObject::pauseRendering()
{
	if(const auto r = currentRender())
		r->pause();
}

void RendererObject::resumeRendering()
{
	if(const auto r = currentRender())
		r->resume();
}

void RendererObject::stopRendering()
{
	if(const auto r = currentRender())
		r->stop();
}

double RendererObject::getSamplesPerPixel() const
{
	const auto r = currentRender();
	return r ? r->getSamplesPerPixel() : 0;
}

double RendererObject::getElapsedTime() const
{
	const auto r = currentRender();
	return r ? r->getElapsedTime() : 0;
}

void RendererObject::postMessage(int type, const std::string& text)
{
	std::lock_guard<std::mutex> lock(messages_mutex);
	messages.push_back(Reference<InterfaceBase>(new MessageObject(type, String(text))));
}

void RendererObject::beginMessages()
{
	std::lock_guard<std::mutex> lock(messages_mutex);
	delivered.clear();
}

bool RendererObject::atEndOfMessages()
{
	std::lock_guard<std::mutex> lock(messages_mutex);
	return messages.empty();
}

InterfaceBase* RendererObject::nextMessage()
{
	std::lock_guard<std::mutex> lock(messages_mutex);
	if(messages.empty())
		return nullptr;
	delivered.push_back(messages.front());
	messages.pop_front();
	return delivered.back().getPointer();
}

void RendererObject::endMessages()
{
	std::lock_guard<std::mutex> lock(messages_mutex);
	delivered.clear();
}

ToneMapperObject::ToneMapperObject()
{
	table = toneMapperTable();
	destroy = &destroyObject<ToneMapperObject>;
}

ToneMapperObject::~ToneMapperObject()
{
	waitForPasses();
}

void ToneMapperObject::waitForPasses()
{
	if(worker.joinable())
		worker.join();
}

void ToneMapperObject::initialise(RenderBuffer* render_buffer_, UInt8Buffer* bytes_, FloatBuffer* floats_, float gamma_,
	String& error_out)
{
	if(!render_buffer_ || !render_buffer_->master_buffer)
	{
		error_out = String("The tone mapper needs a render buffer.");
		return;
	}
	render_buffer = render_buffer_;
	bytes = bytes_;
	floats = floats_;
	gamma = gamma_;
}

void ToneMapperObject::setParameters(const SceneNode* tone_mapping, const SceneNode* settings_node, const SceneNode*,
	String& error_out)
{
	const auto* rs = dynamic_cast<const SceneNodeRenderSettings*>(settings_node);
	if(!rs)
	{
		error_out = String("The tone mapper needs the render settings.");
		return;
	}
	const ToneMapSettings new_settings = ToneMapSettings::fromNodes(tone_mapping, settings_node, gamma);
	const uint32_t new_factor =
		rs->settings.contains("super_sample_factor") ? (uint32_t)rs->getInt("super_sample_factor") : 1;
	const MasterBuffer& mb = *render_buffer->master_buffer;
	if(mb.getInternalWidth() != (mb.getFinalWidth() + 8) * new_factor)
	{
		error_out = String("The render buffer does not fit the settings' super_sample_factor.");
		return;
	}
	std::vector<LayerWeight> new_weights = layerWeights(rs, mb.layers.size());
	std::lock_guard<std::mutex> lock(state_mutex);
	settings = new_settings;
	super_sample_factor = new_factor;
	weights = std::move(new_weights);
	has_parameters = true;
}

void ToneMapperObject::toneMapNow()
{
	ToneMapSettings settings;
	uint32_t super_sample_factor;
	std::vector<LayerWeight> weights;
	{
		std::lock_guard<std::mutex> lock(state_mutex);
		if(!has_parameters)
			return;
		settings = this->settings;
		super_sample_factor = this->super_sample_factor;
		weights = this->weights;
	}
	// Read band by band under the buffer's lock, so that the render's
	// threads, which take it for every row they finish, are held up by one
	// band at a time and not by the whole pass.
	Image linear;
	resolveBuffer(*render_buffer->master_buffer, weights.data(), super_sample_factor, linear, &render_buffer->pixels_mutex);
	if(bytes)
	{
		Bitmap bitmap(1, 1, 4);
		toneMap(linear, settings, bitmap);
		std::lock_guard<std::mutex> lock(bytes->mutex);
		if(bytes->width == bitmap.getWidth() && bytes->height == bitmap.getHeight() && bytes->bytes_pp == 4)
			for(uint32_t y = 0; y < bitmap.getHeight(); ++y)
				std::copy(bitmap.getPixel(0, y), bitmap.getPixel(0, y) + bitmap.getWidth() * 4, bytes->getPixel(0, y));
	}
	if(floats)
	{
		Image display;
		toneMapToFloat(linear, settings, display);
		std::lock_guard<std::mutex> lock(floats->mutex);
		if(floats->width == display.getWidth() && floats->height == display.getHeight())
			for(uint32_t y = 0; y < display.getHeight(); ++y)
				for(uint32_t x = 0; x < display.getWidth(); ++x)
				{
					const float* p = display.getPixel(x, y);
					float* q = floats->getPixel(x, y);
					q[0] = p[0];
					q[1] = p[1];
					q[2] = p[2];
					q[3] = 1;
				}
	}
}

void ToneMapperObject::update()
{
	// Never waits for a pass under way: the running worker takes the new
	// request when its pass ends.
	std::lock_guard<std::mutex> lock(state_mutex);
	pass_pending = true;
	done = false;
	if(worker_running)
		return;
	// The former worker has left its loop and is ending.
	if(worker.joinable())
		worker.join();
	worker_running = true;
	worker = std::thread([this] { runPasses(); });
}

void ToneMapperObject::runPasses()
{
	for(;;)
	{
		{
			std::lock_guard<std::mutex> lock(state_mutex);
			if(!pass_pending)
			{
				worker_running = false;
				done = true;
				return;
			}
			pass_pending = false;
		}
		toneMapNow();
	}
}

HardwareInfoObject::HardwareInfoObject()
{
	table = hardwareTable();
	destroy = &destroyObject<HardwareInfoObject>;
}

InterfaceBase* createObject(const std::string& class_name)
{
	// The tables are filled on first use; the lock keeps two first uses
	// from filling one at the same time.
	std::lock_guard<std::mutex> lock(table_mutex);
	if(class_name == "VelornInterface")
		return new RendererObject();
	if(class_name == "ToneMapperDLLAPI")
		return new ToneMapperObject();
	if(class_name == "HardwareInfoDLLAPI")
		return new HardwareInfoObject();
	return nullptr;
}

} // namespace Standin
} // namespace Velorn
