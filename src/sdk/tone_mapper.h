#pragma once

#include "sdk/interface_base.h"
#include "sdk/velorn_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"

namespace Velorn
{

class FloatBuffer;
class RenderBuffer;
class SceneNode;
class UInt8Buffer;

// The tone mapper of the SDK library: turns the render buffer into the
// 8-bit picture (and the float picture, when given one) on a thread of the
// library. A non-empty error message is its failed state, and a tone mapper
// that failed once stays failed.
class ToneMapper : public RefCounted
{
public:
	// Makes "ToneMapperDLLAPI" and initialises it with the buffers; the
	// 8-bit and float buffers may be null. A failure of the initialise call
	// is kept as the error message.
	ToneMapper(const Reference<VelornContext>& context, const Reference<RenderBuffer>& render_buffer,
		const Reference<UInt8Buffer>& uint8_buffer, const Reference<FloatBuffer>& float_buffer, float gamma);
	~ToneMapper() override;

	// Hands the tone mapping, settings and camera nodes to the library, then
	// sizes the output buffers to the settings' "width" and "height". 0 on
	// success, 1 on failure or when the tone mapper failed before.
	int setParameters(const Reference<SceneNode>& tone_mapping, const Reference<SceneNode>& settings,
		const Reference<SceneNode>& camera);
	// Starts one pass on the library's thread and returns at once.
	void update();
	// True when no pass is under way.
	bool isDone();
	const String& getErrorMessage() const { return error_message; }

private:
	Reference<InterfaceBase> object;
	Reference<RenderBuffer> render_buffer;
	Reference<UInt8Buffer> uint8_buffer;
	Reference<FloatBuffer> float_buffer;
	String error_message;
};

} // namespace Velorn
