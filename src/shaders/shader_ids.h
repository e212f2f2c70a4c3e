#pragma once

// The plug-in's shader types and their parameters. Parameter ids repeat
// between the classes (1600 is an input link of the blend, the gain of the
// gradient and colour A of the normal shader): each class has its own
// description.

// Shader types of the plug-in.
enum
{
	ID_VSL_SHADER = 1023863,
	ID_VSL_NOISE = 1024768,
	ID_VSL_BLEND = 1024769,
	ID_VSL_GRADIENT = 1024770,
	ID_VSL_NORMAL = 1029836,
};

// What the shaders of the plug-in tell the host's renderer they need: bump
// support (SHADERINFO_BUMP_SUPPORT).
enum
{
	VSL_RENDER_INFO = 16,
};

// The output kinds of shader text: the value type of the channel that the
// text is for. Any other value is taken as real.
enum
{
	VSL_OUTPUT_REAL = 0,
	VSL_OUTPUT_VECTOR = 1,
};

// The free-text shader (xevelornvslshader).
enum
{
	VSLSHADER_TEXTURE_1 = 1400,
	VSLSHADER_TEXTURE_2 = 1401,
	VSLSHADER_TEXTURE_3 = 1402,
	VSLSHADER_TEXT = 1405,
};

// The noise shader (xvslnoise).
enum
{
	VSLNOISE_KIND = 1500,
	VSLNOISE_KIND_PLAIN = 1501,
	VSLNOISE_KIND_FRACTAL = 1502,
	VSLNOISE_SPACE = 1503,
	VSLNOISE_SPACE_UV = 1504,
	VSLNOISE_SPACE_3D = 1505,
	VSLNOISE_SCALE = 1506,
	VSLNOISE_GAIN = 1507,
	VSLNOISE_OUTPUT = 1508,
	VSLNOISE_OUTPUT_MIX = 1509,
	VSLNOISE_COLOUR_A = 1511,
	VSLNOISE_COLOUR_B = 1512,
};

// The blend shader (xvslblend).
enum
{
	VSLBLEND_INPUT_1 = 1600,
	VSLBLEND_INPUT_2 = 1601,
	VSLBLEND_OPERATION = 1602,
	VSLBLEND_ADD = 1603,
	VSLBLEND_SUBTRACT = 1604,
	VSLBLEND_MULTIPLY = 1605,
	VSLBLEND_GAIN = 1606,
};

// The gradient shader (xvslgradient).
enum
{
	VSLGRADIENT_GAIN = 1600,
	VSLGRADIENT_U = 1601,
	VSLGRADIENT_V = 1602,
	VSLGRADIENT_RADIAL = 1603,
	VSLGRADIENT_DIRECTION = 1604,
	VSLGRADIENT_COLOUR_A = 1605,
	VSLGRADIENT_COLOUR_B = 1606,
};

// The normal shader (xvslnormal).
enum
{
	VSLNORMAL_COLOUR_A = 1600,
	VSLNORMAL_COLOUR_B = 1601,
};

// Whether type is one of the plug-in's shader types above.
bool isVslShaderType(int type);
