#include "standin/shader_program.h"

#include "support/exceptions.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace Velorn
{
namespace Standin
{

namespace
{

enum class Builtin
{
	DotI,
	DotJ,
	DotK,
	MakeVec2,
	MakeVec3,
	Lerp,
	Length,
	TexCoords,
	MinCosTheta,
	Noise,
	Noise01,
	Fbm,
	Fbm01
};

const struct
{
	const char* name;
	Builtin id;
} builtins[] = {{"doti", Builtin::DotI}, {"dotj", Builtin::DotJ}, {"dotk", Builtin::DotK}, {"vec2", Builtin::MakeVec2},
	{"vec3", Builtin::MakeVec3}, {"lerp", Builtin::Lerp}, {"length", Builtin::Length},
	{"getTexCoords", Builtin::TexCoords}, {"minCosTheta", Builtin::MinCosTheta}, {"noise", Builtin::Noise},
	{"noise01", Builtin::Noise01}, {"fbm", Builtin::Fbm}, {"fbm01", Builtin::Fbm01}};

// Arguments are passed on the stack, so their number is bounded.
const size_t max_parameters = 8;

const char* typeName(int dim)
{
	return dim == 1 ? "real" : (dim == 2 ? "vec2" : "vec3");
}

// The lattice hash takes each coordinate times its own odd constant, so a
// cell's eight corners share the six products; mixHash finishes a corner.
const uint32_t hash_x = 0x8da6b343u, hash_y = 0xd8163841u, hash_z = 0xcb1ab31fu;

uint32_t mixHash(uint32_t h)
{
	h ^= h >> 16;
	h *= 0x7feb352du;
	h ^= h >> 15;
	h *= 0x846ca68bu;
	h ^= h >> 16;
	return h;
}

// The directions to the middles of a cube's twelve edges.
const float gradients[12][3] = {{1, 1, 0}, {1, -1, 0}, {-1, 1, 0}, {-1, -1, 0}, {1, 0, 1}, {1, 0, -1}, {-1, 0, 1},
	{-1, 0, -1}, {0, 1, 1}, {0, 1, -1}, {0, -1, 1}, {0, -1, -1}};

// The dot product of the offset with the gradient that the lattice point's
// hash picks.
float lattice(uint32_t hash, float dx, float dy, float dz)
{
	const float* g = gradients[mixHash(hash) % 12];
	return g[0] * dx + g[1] * dy + g[2] * dz;
}

float fade(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }
float mixf(float a, float b, float t) { return a + (b - a) * t; }

} // namespace

float gradientNoise(const V3& p)
{
	const float fx = std::floor(p.x), fy = std::floor(p.y), fz = std::floor(p.z);
	const int32_t x = (int32_t)fx, y = (int32_t)fy, z = (int32_t)fz;
	const float dx = p.x - fx, dy = p.y - fy, dz = p.z - fz;
	const float u = fade(dx), v = fade(dy), w = fade(dz);
	const uint32_t hx[2] = {(uint32_t)x * hash_x, (uint32_t)(x + 1) * hash_x};
	const uint32_t hy[2] = {(uint32_t)y * hash_y, (uint32_t)(y + 1) * hash_y};
	const uint32_t hz[2] = {(uint32_t)z * hash_z, (uint32_t)(z + 1) * hash_z};
	float corners[2][2][2];
	for(int i = 0; i < 2; ++i)
		for(int j = 0; j < 2; ++j)
			for(int k = 0; k < 2; ++k)
				corners[i][j][k] = lattice(hx[i] ^ hy[j] ^ hz[k], dx - i, dy - j, dz - k);
	const float x00 = mixf(corners[0][0][0], corners[1][0][0], u), x10 = mixf(corners[0][1][0], corners[1][1][0], u);
	const float x01 = mixf(corners[0][0][1], corners[1][0][1], u), x11 = mixf(corners[0][1][1], corners[1][1][1], u);
	return mixf(mixf(x00, x10, v), mixf(x01, x11, v), w);
}

float fractalNoise(const V3& p, int octaves)
{
	float sum = 0, amplitude = 1, frequency = 1;
	for(int i = 0; i < octaves; ++i)
	{
		sum += amplitude * gradientNoise(p * frequency);
		amplitude *= 0.5f;
		frequency *= 1.99f;
	}
	return sum;
}

// A node of an expression tree; dim is its static type.
struct ShaderProgram::Node
{
	enum Kind
	{
		Constant,
		Argument,
		Call,
		UserCall,
		Add,
		Subtract,
		Multiply,
		Divide,
		Negate
	} kind = Constant;
	int dim = 1;
	ShaderValue value;  // of a constant
	int argument = 0;
	Builtin builtin = Builtin::DotI;
	const Function* function = nullptr;
	std::vector<std::unique_ptr<Node>> children;
};

struct ShaderProgram::Function
{
	std::string name;
	std::vector<int> parameter_dims;
	std::vector<std::string> parameter_names;
	int result_dim = 1;
	std::unique_ptr<Node> body;
};

namespace
{

using Node = ShaderProgram::Node;
using Function = ShaderProgram::Function;

ShaderValue evalNode(const Node& n, const ShaderValue* args, const ShadePoint& p);

// Recursive descent over the text; every fault goes through fail(), which
// adds the place.
class Parser
{
public:
	Parser(const std::string& text_, std::vector<std::unique_ptr<Function>>& functions_)
		: text(text_), functions(functions_)
	{}

	void parseProgram()
	{
		skipSpace();
		while(pos < text.size())
		{
			const size_t start = pos;
			if(identifier() != "def")
				failAt(start, "expected \"def\"");
			parseDefinition();
			skipSpace();
		}
	}

private:
	[[noreturn]] void fail(const std::string& message) const
	{
		int line = 1, column = 1;
		for(size_t i = 0; i < pos && i < text.size(); ++i)
		{
			if(text[i] == '\n')
			{
				++line;
				column = 1;
			}
			else
				++column;
		}
		throw Exception("Shader program, line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
						message + ".");
	}

	void skipSpace()
	{
		while(pos < text.size() && std::isspace((unsigned char)text[pos]))
			++pos;
	}

	bool accept(char c)
	{
		skipSpace();
		if(pos < text.size() && text[pos] == c)
		{
			++pos;
			return true;
		}
		return false;
	}

	void expect(char c)
	{
		if(!accept(c))
			fail(std::string("expected '") + c + "'");
	}

	std::string identifier()
	{
		skipSpace();
		const size_t start = pos;
		while(pos < text.size() && (std::isalnum((unsigned char)text[pos]) || text[pos] == '_'))
			++pos;
		if(pos == start || std::isdigit((unsigned char)text[start]))
		{
			pos = start;
			fail("expected a name");
		}
		return text.substr(start, pos - start);
	}

	int type()
	{
		const size_t start = pos;
		const std::string name = identifier();
		if(name == "real" || name == "int")
			return 1;
		if(name == "vec2")
			return 2;
		if(name == "vec3")
			return 3;
		pos = start;
		fail("unknown type '" + name + "'");
	}

	void parseDefinition()
	{
		auto f = std::make_unique<Function>();
		f->name = identifier();
		expect('(');
		if(!accept(')'))
		{
			do
			{
				if(f->parameter_dims.size() == max_parameters)
					fail("more than " + std::to_string(max_parameters) + " parameters");
				f->parameter_dims.push_back(type());
				f->parameter_names.push_back(identifier());
			} while(accept(','));
			expect(')');
		}
		f->result_dim = type();
		expect(':');
		current = f.get();
		f->body = expression();
		if(f->body->dim != f->result_dim)
			fail("function '" + f->name + "' returns " + typeName(f->result_dim) + " but its expression is " +
				 typeName(f->body->dim));
		// Defined before its callers, so that no call can recurse.
		functions.push_back(std::move(f));
	}

	std::unique_ptr<Node> binary(Node::Kind kind, std::unique_ptr<Node> a, std::unique_ptr<Node> b)
	{
		auto n = std::make_unique<Node>();
		n->kind = kind;
		const int da = a->dim, db = b->dim;
		const bool ok = kind == Node::Divide ? db == 1
											 : (kind == Node::Multiply ? (da == 1 || db == 1) : (da == db || da == 1 || db == 1));
		if(!ok)
			fail(std::string("cannot ") +
				 (kind == Node::Add ? "add" : kind == Node::Subtract ? "subtract" : kind == Node::Multiply ? "multiply" : "divide") +
				 " " + typeName(da) + " and " + typeName(db));
		n->dim = std::max(da, db);
		n->children.push_back(std::move(a));
		n->children.push_back(std::move(b));
		return fold(std::move(n));
	}

	std::unique_ptr<Node> expression()
	{
		std::unique_ptr<Node> left = term();
		for(;;)
		{
			if(accept('+'))
				left = binary(Node::Add, std::move(left), term());
			else if(accept('-'))
				left = binary(Node::Subtract, std::move(left), term());
			else
				return left;
		}
	}

	std::unique_ptr<Node> term()
	{
		std::unique_ptr<Node> left = unary();
		for(;;)
		{
			if(accept('*'))
				left = binary(Node::Multiply, std::move(left), unary());
			else if(accept('/'))
				left = binary(Node::Divide, std::move(left), unary());
			else
				return left;
		}
	}

	std::unique_ptr<Node> unary()
	{
		if(accept('-'))
		{
			auto n = std::make_unique<Node>();
			n->kind = Node::Negate;
			n->children.push_back(unary());
			n->dim = n->children[0]->dim;
			return fold(std::move(n));
		}
		return primary();
	}

	std::unique_ptr<Node> primary()
	{
		if(accept('('))
		{
			std::unique_ptr<Node> inner = expression();
			expect(')');
			return inner;
		}
		skipSpace();
		if(pos < text.size() && (std::isdigit((unsigned char)text[pos]) || text[pos] == '.'))
		{
			char* end = nullptr;
			auto n = std::make_unique<Node>();
			n->value.c[0] = std::strtof(text.c_str() + pos, &end);
			pos = end - text.c_str();
			return n;
		}
		const size_t start = pos;
		const std::string name = identifier();
		if(!accept('('))
		{
			for(size_t i = 0; i < current->parameter_names.size(); ++i)
				if(current->parameter_names[i] == name)
				{
					auto n = std::make_unique<Node>();
					n->kind = Node::Argument;
					n->argument = (int)i;
					n->dim = current->parameter_dims[i];
					return n;
				}
			pos = start;
			fail("unknown name '" + name + "'");
		}
		auto n = std::make_unique<Node>();
		if(!accept(')'))
		{
			do
				n->children.push_back(expression());
			while(accept(','));
			expect(')');
		}
		for(const auto& f : functions)
			if(f->name == name)
			{
				n->kind = Node::UserCall;
				n->function = f.get();
				n->dim = f->result_dim;
				bool ok = n->children.size() == f->parameter_dims.size();
				for(size_t i = 0; ok && i < n->children.size(); ++i)
					ok = n->children[i]->dim == f->parameter_dims[i];
				if(!ok)
					failAt(start, "the arguments do not match function '" + name + "'");
				return n;
			}
		for(const auto& b : builtins)
			if(name == b.name)
			{
				n->kind = Node::Call;
				n->builtin = b.id;
				n->dim = builtinDim(b.id, *n);
				if(n->dim == 0)
					failAt(start, "the arguments do not match '" + name + "'");
				if(b.id == Builtin::TexCoords || b.id == Builtin::MinCosTheta)
					return n;
				return fold(std::move(n));
			}
		failAt(start, "unknown function '" + name + "'");
	}

	// A node of constant children becomes the constant it evaluates to, so
	// that colours written as vec3(...) are not rebuilt at every hit.
	static std::unique_ptr<Node> fold(std::unique_ptr<Node> n)
	{
		for(const auto& c : n->children)
			if(c->kind != Node::Constant)
				return n;
		auto folded = std::make_unique<Node>();
		folded->dim = n->dim;
		folded->value = evalNode(*n, nullptr, ShadePoint());
		return folded;
	}

	[[noreturn]] void failAt(size_t at, const std::string& message)
	{
		pos = at;
		fail(message);
	}

	// The result's dim, or 0 when the arguments do not fit.
	static int builtinDim(Builtin b, const Node& n)
	{
		std::vector<int> d;
		for(const auto& c : n.children)
			d.push_back(c->dim);
		const size_t k = d.size();
		switch(b)
		{
		case Builtin::DotI:
		case Builtin::DotJ: return k == 1 && d[0] >= 2 ? 1 : 0;
		case Builtin::DotK: return k == 1 && d[0] == 3 ? 1 : 0;
		case Builtin::MakeVec2: return (k == 1 && d[0] == 1) || (k == 2 && d[0] == 1 && d[1] == 1) ? 2 : 0;
		case Builtin::MakeVec3:
			return (k == 1 && d[0] == 1) || (k == 3 && d[0] == 1 && d[1] == 1 && d[2] == 1) ? 3 : 0;
		case Builtin::Lerp: return k == 3 && d[0] == d[1] && d[2] == 1 ? d[0] : 0;
		case Builtin::Length: return k == 1 ? 1 : 0;
		case Builtin::TexCoords: return k == 1 && d[0] == 1 ? 2 : 0;
		case Builtin::MinCosTheta: return k == 0 ? 1 : 0;
		case Builtin::Noise:
		case Builtin::Noise01: return k == 1 && d[0] >= 2 ? 1 : 0;
		case Builtin::Fbm:
		case Builtin::Fbm01: return k == 2 && d[0] >= 2 && d[1] == 1 ? 1 : 0;
		}
		return 0;
	}

	const std::string& text;
	std::vector<std::unique_ptr<Function>>& functions;
	const Function* current = nullptr;
	size_t pos = 0;
};

ShaderValue make(int dim, float a, float b = 0, float c = 0)
{
	ShaderValue v;
	v.dim = dim;
	v.c[0] = a;
	v.c[1] = b;
	v.c[2] = c;
	return v;
}

float at(const ShaderValue& v, int i) { return v.dim == 1 ? v.c[0] : v.c[i]; }

V3 asPoint(const ShaderValue& v) { return V3(v.c[0], v.c[1], v.dim == 3 ? v.c[2] : 0.0f); }

// The deepest chain of calls is bounded: functions can only call those
// defined before them.
ShaderValue evalNode(const Node& n, const ShaderValue* args, const ShadePoint& p)
{
	switch(n.kind)
	{
	case Node::Constant: return n.value;
	case Node::Argument: return args[n.argument];
	case Node::Negate:
	{
		ShaderValue v = evalNode(*n.children[0], args, p);
		for(float& c : v.c)
			c = -c;
		return v;
	}
	case Node::Add:
	case Node::Subtract:
	case Node::Multiply:
	case Node::Divide:
	{
		const ShaderValue a = evalNode(*n.children[0], args, p), b = evalNode(*n.children[1], args, p);
		ShaderValue r;
		r.dim = n.dim;
		for(int i = 0; i < n.dim; ++i)
		{
			const float x = at(a, i), y = at(b, i);
			r.c[i] = n.kind == Node::Add ? x + y : n.kind == Node::Subtract ? x - y : n.kind == Node::Multiply ? x * y : x / y;
		}
		return r;
	}
	case Node::UserCall:
	{
		ShaderValue values[max_parameters];
		for(size_t i = 0; i < n.children.size(); ++i)
			values[i] = evalNode(*n.children[i], args, p);
		return evalNode(*n.function->body, values, p);
	}
	case Node::Call: break;
	}
	ShaderValue a[3];
	for(size_t i = 0; i < n.children.size(); ++i)
		a[i] = evalNode(*n.children[i], args, p);
	switch(n.builtin)
	{
	case Builtin::DotI: return make(1, a[0].c[0]);
	case Builtin::DotJ: return make(1, a[0].c[1]);
	case Builtin::DotK: return make(1, a[0].c[2]);
	case Builtin::MakeVec2: return make(2, a[0].c[0], at(a[n.children.size() - 1], 0));
	case Builtin::MakeVec3:
		return n.children.size() == 1 ? make(3, a[0].c[0], a[0].c[0], a[0].c[0]) : make(3, a[0].c[0], a[1].c[0], a[2].c[0]);
	case Builtin::Lerp:
	{
		ShaderValue r;
		r.dim = n.dim;
		for(int i = 0; i < n.dim; ++i)
			r.c[i] = a[0].c[i] + (a[1].c[i] - a[0].c[i]) * a[2].c[0];
		return r;
	}
	case Builtin::Length:
		return make(1, std::sqrt(a[0].c[0] * a[0].c[0] + a[0].c[1] * a[0].c[1] + a[0].c[2] * a[0].c[2]));
	case Builtin::TexCoords: return make(2, p.u, p.v);
	case Builtin::MinCosTheta: return make(1, p.cos_theta);
	case Builtin::Noise: return make(1, gradientNoise(asPoint(a[0])));
	case Builtin::Noise01: return make(1, (gradientNoise(asPoint(a[0])) + 1) * 0.5f);
	case Builtin::Fbm: return make(1, fractalNoise(asPoint(a[0]), (int)a[1].c[0]));
	case Builtin::Fbm01: return make(1, (fractalNoise(asPoint(a[0]), (int)a[1].c[0]) + 1) * 0.5f);
	}
	return make(1, 0);
}

} // namespace

ShaderProgram::ShaderProgram(const std::string& text)
{
	Parser(text, functions).parseProgram();
	for(const auto& f : functions)
		if(f->name == "eval")
			entry = f.get();
	if(!entry)
		throw Exception("Shader program: no function \"eval\".");
	const bool takes_position = entry->parameter_dims.size() == 1 && entry->parameter_dims[0] == 3;
	if(!(entry->parameter_dims.empty() || takes_position) || entry->result_dim == 2)
		throw Exception("Shader program: \"eval\" must take nothing or (vec3 pos) and return real or vec3.");
}

ShaderProgram::~ShaderProgram() = default;

ShaderValue ShaderProgram::eval(const ShadePoint& point) const
{
	const ShaderValue position = make(3, point.position.x, point.position.y, point.position.z);
	return evalNode(*entry->body, &position, point);
}

V3 ShaderProgram::evalColour(const ShadePoint& point) const
{
	const ShaderValue v = eval(point);
	return v.dim == 1 ? V3(v.c[0]) : V3(v.c[0], v.c[1], v.c[2]);
}

float ShaderProgram::evalReal(const ShadePoint& point) const
{
	const ShaderValue v = eval(point);
	return v.dim == 1 ? v.c[0] : (v.c[0] + v.c[1] + v.c[2]) / 3.0f;
}

} // namespace Standin
} // namespace Velorn
