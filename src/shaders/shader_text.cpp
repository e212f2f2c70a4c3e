// The expressions of the plug-in's shaders in the renderer's shader
// language, and the programs made of them.

#include "shaders/shader_number.h"
#include "shaders/shader_ids.h"
#include "shaders/shader_plugins.h"
#include "shaders/shader_translation.h"

#include "scene/tex_coord_generator.h"

#include <string>

const char* const kShaderPrologue =
	"def Vec3ToReal(vec3 v) real : ((doti(v) + dotj(v) + dotk(v)) / 3.0)\n"
	"def mulCompVec2(vec2 a, vec2 b) vec2 : vec2(doti(a) * doti(b), dotj(a) * dotj(b))\n"
	"def mulCompVec3(vec3 a, vec3 b) vec3 : vec3(doti(a) * doti(b), dotj(a) * dotj(b), dotk(a) * dotk(b))\n";

namespace
{

bool isVectorOutput(int32_t outputKind)
{
	return outputKind == VSL_OUTPUT_VECTOR;
}

std::string colourText(const Vector& c)
{
	return "vec3(" + shaderNumberText(c.x) + ", " + shaderNumberText(c.y) + ", " + shaderNumberText(c.z) + ")";
}

// A real channel takes the mean of a colour's components.
std::string forOutput(const std::string& colour, int32_t outputKind)
{
	return isVectorOutput(outputKind) ? colour : "Vec3ToReal(" + colour + ")";
}

// The constant of a shader whose parameters cannot be read. "Vector(1.0)"
// is no function of the language: such a shader fails in the renderer's
// compiler instead of rendering a wrong colour.
std::string unreadText(int32_t outputKind, const char* real)
{
	return isVectorOutput(outputKind) ? "Vector(1.0)" : real;
}

// What stands for an empty input of a blend: white.
std::string emptyInputText(int32_t outputKind)
{
	return isVectorOutput(outputKind) ? "vec3(1.0)" : "1.0";
}

const struct
{
	int32_t param;
	const char* mark;
} kTextureMarks[] = {
	{VSLSHADER_TEXTURE_1, "$tex01$"},
	{VSLSHADER_TEXTURE_2, "$tex02$"},
	{VSLSHADER_TEXTURE_3, "$tex03$"},
};

void replaceAll(std::string& text, const std::string& mark, const std::string& with)
{
	for(size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + with.size()))
		text.replace(at, mark.size(), with);
}

// The free-text route: the user's program with its marks replaced.
std::string freeText(BaseShader* shader, Velorn::Vector<Velorn::Texture>& textures)
{
	const BaseContainer& data = *shader->GetDataInstance();
	std::string text = data.GetString(VSLSHADER_TEXT, String("no shader")).GetStdString();
	for(const auto& entry : kTextureMarks)
	{
		const Filename file = data.GetFilename(entry.param);
		if(!file.Content())
			continue;
		Velorn::Texture texture;
		texture.path = Velorn::String(file.GetString().GetStdString());
		texture.exponent = 2.2;
		texture.a = 0;
		texture.b = 1;
		texture.c = 0;
		texture.smooth = false;
		texture.tex_coord_generation = new Velorn::UVTexCoordGenerator();
		textures.push_back(texture);
		replaceAll(text, entry.mark, std::to_string(textures.size() - 1));
	}
	return text;
}

} // namespace

std::string VslFreeTextShader::getShaderText(int32_t outputKind)
{
	return emptyInputText(outputKind);
}

std::string VslNoiseShader::getShaderText(int32_t outputKind)
{
	if(!load(shader))
		return unreadText(outputKind, "1.0");

	std::string function = kind == VSLNOISE_KIND_FRACTAL ? "fbm" : "noise";
	if(outputMode == VSLNOISE_OUTPUT_MIX)
		function += "01";
	// The scene is z-up: the 3-D form swaps y and z of the scale.
	const std::string argument = space == VSLNOISE_SPACE_3D ?
		"(mulCompVec3(pos, vec3(" + shaderNumberText(scale.x) + ", " + shaderNumberText(scale.z) + ", " +
			shaderNumberText(scale.y) + "))" :
		"(mulCompVec2(getTexCoords(0) * 10.0, vec2(" + shaderNumberText(scale.x) + ", " +
			shaderNumberText(scale.y) + "))";
	const std::string call = function + argument + (kind == VSLNOISE_KIND_FRACTAL ? ",8)" : ")");

	std::string value;
	if(outputMode == VSLNOISE_OUTPUT_MIX)
		value = forOutput("lerp(" + colourText(colourA) + ", " + colourText(colourB) + ", " + call + ")", outputKind);
	else
		value = isVectorOutput(outputKind) ? "vec3(" + call + ")" : call;
	return "(" + value + " * " + shaderNumberText(gain) + ")";
}

std::string VslBlendShader::getShaderText(int32_t outputKind)
{
	if(writingText || !load(shader))
		return emptyInputText(outputKind);

	writingText = true;
	std::string x = inputs[0].data ? inputs[0].data->getShaderText(outputKind) : emptyInputText(outputKind);
	std::string y = inputs[1].data ? inputs[1].data->getShaderText(outputKind) : emptyInputText(outputKind);
	writingText = false;

	// For vectors add and subtract stand without brackets, so the gain
	// binds to the second operand only; the renderer's scenes rely on it.
	const bool vector = isVectorOutput(outputKind);
	std::string value;
	switch(operation)
	{
	case VSLBLEND_ADD:
		value = vector ? x + " + " + y : "(" + x + " + " + y + ")";
		break;
	case VSLBLEND_SUBTRACT:
		value = vector ? x + " - " + y : "(" + x + " - " + y + ")";
		break;
	case VSLBLEND_MULTIPLY:
		value = vector ? "mulCompVec3(" + x + ", " + y + ")" : "(" + x + " * " + y + ")";
		break;
	default:
		// As Output: an unknown operation leaves white.
		value = emptyInputText(outputKind);
		break;
	}
	return value + " * " + shaderNumberText(gain);
}

std::string VslGradientShader::getShaderText(int32_t outputKind)
{
	if(!load(shader))
		return unreadText(outputKind, "1.0");

	std::string t = "doti(getTexCoords(0)))";
	if(direction == VSLGRADIENT_V)
		t = "dotj(getTexCoords(0)))";
	else if(direction == VSLGRADIENT_RADIAL)
		t = "length(vec2(0.5,0.5) - getTexCoords(0)) * 2.0 )";
	const std::string lerp = "lerp(" + colourText(colourA) + ", " + colourText(colourB) + ", " + t;
	return forOutput(lerp, outputKind) + " * " + shaderNumberText(gain);
}

std::string VslNormalShader::getShaderText(int32_t outputKind)
{
	if(!load(shader))
		return unreadText(outputKind, "(1.0)");
	return forOutput("lerp(" + colourText(colourA) + ", " + colourText(colourB) + ", minCosTheta())", outputKind);
}

Velorn::Reference<Velorn::ShaderInfo> translateShader(BaseShader* shader, Velorn::Vector<Velorn::Texture>& textures,
	const String& header, int32_t outputKind)
{
	if(!shader)
		return Velorn::Reference<Velorn::ShaderInfo>();
	Velorn::Reference<Velorn::ShaderInfo> info = new Velorn::ShaderInfo();
	if(shader->GetType() == ID_VSL_SHADER)
	{
		info->shader = Velorn::String(freeText(shader, textures));
		return info;
	}
	// Only the plug-in's shaders come here; anything else reads as an
	// empty input would.
	VslShaderData* data = dynamic_cast<VslShaderData*>(shader->GetNodeData());
	const std::string expression = data ? data->getShaderText(outputKind) : emptyInputText(outputKind);
	info->shader = Velorn::String(std::string(kShaderPrologue) + header.GetStdString() + expression);
	return info;
}
