#pragma once

#include <string>

namespace Velorn
{

// Every failure of the scene library is one of these: an object thrown by
// value that carries one message. They share this base so that a caller on
// the edge (the command line, the plug-in) can catch all of them in one
// place, but none of them derives from std::exception.
class MessageException
{
public:
	explicit MessageException(std::string message) : msg(std::move(message)) {}
	virtual ~MessageException() = default;

	const std::string& what() const { return msg; }

private:
	std::string msg;
};

#define VELORN_DECLARE_EXCEPTION(ClassName) \
	class ClassName : public MessageException \
	{ \
	public: \
		using MessageException::MessageException; \
	}

// The scene graph and the string conversions.
VELORN_DECLARE_EXCEPTION(VelornException);
// The scene file reader and what it reports for scene authors.
VELORN_DECLARE_EXCEPTION(SceneParserExcep);
// The XML parse helpers.
VELORN_DECLARE_EXCEPTION(SceneParseUtilsExcep);
// Images and buffers.
VELORN_DECLARE_EXCEPTION(Exception);
// One class per support module.
VELORN_DECLARE_EXCEPTION(FileUtilsExcep);
VELORN_DECLARE_EXCEPTION(PlatformUtilsExcep);
VELORN_DECLARE_EXCEPTION(StringUtilsExcep);
// Model decoders and transform paths.
VELORN_DECLARE_EXCEPTION(ModelFormatDecoderExcep);
VELORN_DECLARE_EXCEPTION(TransformPathExcep);

#undef VELORN_DECLARE_EXCEPTION

} // namespace Velorn
