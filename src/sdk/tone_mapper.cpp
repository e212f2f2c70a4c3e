#include "sdk/tone_mapper.h"

#include "scene/scene_node.h"
#include "scene/scene_node_render_settings.h"
#include "sdk/render_buffers.h"

namespace Velorn
{

ToneMapper::ToneMapper(const Reference<VelornContext>& context, const Reference<RenderBuffer>& render_buffer_,
	const Reference<UInt8Buffer>& uint8_buffer_, const Reference<FloatBuffer>& float_buffer_, float gamma)
	: render_buffer(render_buffer_), uint8_buffer(uint8_buffer_), float_buffer(float_buffer_)
{
	context->create_instance(String("ToneMapperDLLAPI"), object);
	String error;
	object->entry<ToneMapperTable::InitialiseFn>(ToneMapperTable::Initialise)(object.getPointer(), &context->sdk_dir,
		&context->appdata_dir, render_buffer.getPointer(), uint8_buffer.getPointer(), float_buffer.getPointer(), gamma,
		&error);
	if(!error.empty())
		error_message = error;
}

ToneMapper::~ToneMapper()
{
	// The library's object reads the buffers until it is gone.
	object = nullptr;
}

int ToneMapper::setParameters(const Reference<SceneNode>& tone_mapping, const Reference<SceneNode>& settings,
	const Reference<SceneNode>& camera)
{
	if(!error_message.empty())
		return 1;
	String error;
	const auto setParameters = object->entry<ToneMapperTable::SetParametersFn>(ToneMapperTable::SetParameters);
	setParameters(object.getPointer(), &tone_mapping, &settings, &camera, &error);
	if(!error.empty())
	{
		error_message = error;
		return 1;
	}
	// Setting the parameters is also what sizes the output.
	const auto* rs = dynamic_cast<const SceneNodeRenderSettings*>(settings.getPointer());
	const uint32_t width = rs ? (uint32_t)rs->getInt("width") : 0;
	const uint32_t height = rs ? (uint32_t)rs->getInt("height") : 0;
	if(uint8_buffer.nonNull())
	{
		std::lock_guard<std::mutex> lock(uint8_buffer->mutex);
		uint8_buffer->resize(width, height);
	}
	if(float_buffer.nonNull())
	{
		std::lock_guard<std::mutex> lock(float_buffer->mutex);
		float_buffer->resize(width, height);
	}
	return 0;
}

void ToneMapper::update()
{
	object->entry<VoidFn>(ToneMapperTable::Update)(object.getPointer());
}

bool ToneMapper::isDone()
{
	return object->entry<BoolFn>(ToneMapperTable::IsDone)(object.getPointer());
}

} // namespace Velorn
