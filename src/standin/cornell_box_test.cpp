// A closed-on-five-sides box of diffuse walls lit by a patch of its ceiling,
// traced and compared against a radiosity solve of the same box.
#include "mesh/mesh.h"
#include "scene/rotation.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_model.h"
#include "standin/progressive_render.h"
#include "standin/standin_test_helpers.h"
#include "standin/tracer_scene.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace Velorn
{
namespace Standin
{
namespace
{

using namespace StandinTest;
using RGB = std::array<double, 3>;

// The unit box [0,1]^3, z up, open towards -y. The emitter is the square
// [0.25, 0.75]^2 of the ceiling; the radiosity grid of 8 x 8 patches a
// wall has that square as whole patches.
const RGB white_albedo = {0.75, 0.75, 0.75};
const RGB red_albedo = {0.75, 0.1, 0.1};
const RGB green_albedo = {0.1, 0.75, 0.1};
const double emitted = 4.0;
const double light_lo = 0.25, light_hi = 0.75;
const V3 eye(0.5f, -1.0f, 0.5f);

enum Wall
{
	Floor,
	Ceiling,
	Back,
	Left,
	Right,
	wall_count
};

// A wall as corner + s * edge_s + t * edge_t for s, t in [0, 1], with its
// normal into the box.
struct WallFrame
{
	V3 corner, edge_s, edge_t, normal;
	RGB albedo;
	V3 at(double s, double t) const { return corner + edge_s * (float)s + edge_t * (float)t; }
};

WallFrame wallFrame(int wall)
{
	switch(wall)
	{
	case Floor: return {V3(0, 0, 0), V3(1, 0, 0), V3(0, 1, 0), V3(0, 0, 1), white_albedo};
	case Ceiling: return {V3(0, 0, 1), V3(1, 0, 0), V3(0, 1, 0), V3(0, 0, -1), white_albedo};
	case Back: return {V3(0, 1, 0), V3(1, 0, 0), V3(0, 0, 1), V3(0, -1, 0), white_albedo};
	case Left: return {V3(0, 0, 0), V3(0, 1, 0), V3(0, 0, 1), V3(1, 0, 0), red_albedo};
	default: return {V3(1, 0, 0), V3(0, 1, 0), V3(0, 0, 1), V3(-1, 0, 0), green_albedo};
	}
}

bool inLight(int wall, double s, double t)
{
	return wall == Ceiling && s > light_lo && s < light_hi && t > light_lo && t < light_hi;
}

// The radiosity solve: every wall cut into n x n patches of constant
// radiance L_i = E_i + rho_i sum_j F_ij L_j. The box's inside is convex, so
// no patch hides another. F_ij is the point-to-polygon form factor (the
// closed contour formula, exact for a point) averaged over 3 x 3 Gauss
// points of patch i; emitting patches are black.
class Radiosity
{
public:
	explicit Radiosity(int n_) : n(n_), count(wall_count * n_ * n_)
	{
		std::vector<double> form(count * count, 0.0);
		const double g[3] = {0.5 - std::sqrt(0.15), 0.5, 0.5 + std::sqrt(0.15)};
		const double gw[3] = {5.0 / 18, 8.0 / 18, 5.0 / 18};
		for(int i = 0; i < count; ++i)
		{
			const WallFrame wi = wallFrame(i / (n * n));
			const int si = i % n, ti = (i / n) % n;
			for(int j = 0; j < count; ++j)
			{
				if(i / (n * n) == j / (n * n))
					continue;  // coplanar
				double f = 0;
				for(int a = 0; a < 3; ++a)
					for(int b = 0; b < 3; ++b)
						f += gw[a] * gw[b] * pointToPatch(wi.at((si + g[a]) / n, (ti + g[b]) / n), wi.normal, j);
				form[(size_t)i * count + j] = f;
			}
		}
		radiance.assign(count, RGB{0, 0, 0});
		for(int c = 0; c < 3; ++c)
			for(int sweep = 0; sweep < 100; ++sweep)
				for(int i = 0; i < count; ++i)
				{
					const int wall = i / (n * n);
					const double s = (i % n + 0.5) / n, t = ((i / n) % n + 0.5) / n;
					if(inLight(wall, s, t))
					{
						radiance[i][c] = emitted;
						continue;
					}
					double gathered = 0;
					for(int j = 0; j < count; ++j)
						gathered += form[(size_t)i * count + j] * radiance[j][c];
					radiance[i][c] = wallFrame(wall).albedo[c] * gathered;
				}
	}

	// The area mean of a wall's patches, the emitter's left out.
	RGB wallMean(int wall) const
	{
		RGB sum = {0, 0, 0};
		int patches = 0;
		for(int k = 0; k < n * n; ++k)
		{
			if(inLight(wall, (k % n + 0.5) / n, (k / n + 0.5) / n))
				continue;
			for(int c = 0; c < 3; ++c)
				sum[c] += radiance[wall * n * n + k][c];
			++patches;
		}
		for(double& v : sum)
			v /= patches;
		return sum;
	}

	// The radiance seen from the eye along dir (into the box).
	RGB seen(const V3& dir) const
	{
		// The nearest wall plane in front of the eye is the one it sees.
		double best = 1e30;
		int wall = -1;
		for(int w = 0; w < wall_count; ++w)
		{
			const WallFrame f = wallFrame(w);
			const double denom = dot(dir, f.normal);
			if(denom >= 0)
				continue;
			const double t = dot(f.corner - eye, f.normal) / denom;
			if(t > 0 && t < best)
			{
				best = t;
				wall = w;
			}
		}
		const WallFrame f = wallFrame(wall);
		const V3 rel = eye + dir * (float)best - f.corner;
		const int s = std::min(n - 1, std::max(0, (int)(dot(rel, f.edge_s) * n)));
		const int t = std::min(n - 1, std::max(0, (int)(dot(rel, f.edge_t) * n)));
		return radiance[wall * n * n + t * n + s];
	}

private:
	// The form factor from a point with normal nx to patch j.
	double pointToPatch(const V3& x, const V3& nx, int j) const
	{
		const WallFrame w = wallFrame(j / (n * n));
		const int s = j % n, t = (j / n) % n;
		const V3 corners[4] = {w.at((double)s / n, (double)t / n), w.at((double)(s + 1) / n, (double)t / n),
			w.at((double)(s + 1) / n, (double)(t + 1) / n), w.at((double)s / n, (double)(t + 1) / n)};
		double sum = 0;
		for(int k = 0; k < 4; ++k)
		{
			const V3 r0 = normalise(corners[k] - x), r1 = normalise(corners[(k + 1) % 4] - x);
			const V3 c = cross(r0, r1);
			const double len = std::sqrt((double)dot(c, c));
			if(len < 1e-12)
				continue;
			const double angle = std::acos(std::min(1.0, std::max(-1.0, (double)dot(r0, r1))));
			sum += angle * dot(nx, c) / len;
		}
		return std::fabs(sum) / (2 * M_PI);
	}

	int n, count;
	std::vector<RGB> radiance;
};

Reference<DiffuseMaterial> coloured(const RGB& c)
{
	Reference<DiffuseMaterial> m = new DiffuseMaterial();
	m->albedo = new ConstantWavelengthDependentParam(new RGBSpectrum(Vec3d(c[0], c[1], c[2]), 1.0));
	return m;
}

// The box as one mesh: materials 0 white, 1 red, 2 green, 3 the light. The
// ceiling is cut around the light so that no two faces overlap; the light
// faces down.
Reference<SceneNodeRoot> cornellScene(int size)
{
	Reference<SceneNodeRoot> root = makeRoot(size, size, Vec3d(eye.x, eye.y, eye.z), Vec3d(0, 1, 0));
	Reference<Mesh> mesh = new Mesh();
	for(const char* name : {"white", "red", "green", "light"})
		mesh->addMaterialUsed(name);
	const uint32_t no_uv[4] = {0, 0, 0, 0};
	// Each quad is given counter-clockwise as seen from inside the box; the
	// scene winds a polygon clockwise seen from its front, so its corners
	// go in the other order.
	auto quad = [&](const V3& a, const V3& b, const V3& c, const V3& d, uint32_t material) {
		const uint32_t base = (uint32_t)mesh->verts.size();
		for(const V3& p : {a, b, c, d})
			mesh->addVertex(Vec3f{p.x, p.y, p.z});
		const uint32_t idx[4] = {base, base + 3, base + 2, base + 1};
		mesh->addQuad(idx, no_uv, material);
	};
	quad(V3(0, 0, 0), V3(1, 0, 0), V3(1, 1, 0), V3(0, 1, 0), 0);
	quad(V3(0, 1, 0), V3(1, 1, 0), V3(1, 1, 1), V3(0, 1, 1), 0);
	quad(V3(0, 0, 0), V3(0, 1, 0), V3(0, 1, 1), V3(0, 0, 1), 1);
	quad(V3(1, 0, 0), V3(1, 0, 1), V3(1, 1, 1), V3(1, 1, 0), 2);
	const float lo = (float)light_lo, hi = (float)light_hi;
	auto ceiling = [&](float x0, float x1, float y0, float y1, uint32_t material) {
		quad(V3(x0, y0, 1), V3(x0, y1, 1), V3(x1, y1, 1), V3(x1, y0, 1), material);
	};
	ceiling(0, lo, 0, 1, 0);
	ceiling(hi, 1, 0, 1, 0);
	ceiling(lo, hi, 0, lo, 0);
	ceiling(lo, hi, hi, 1, 0);
	ceiling(lo, hi, lo, hi, 3);
	mesh->endOfModel();

	Reference<SceneNodeMesh> mesh_node = new SceneNodeMesh();
	mesh_node->setMesh(mesh);
	addModel(*root, mesh_node,
		{addMaterial(*root, coloured(white_albedo)), addMaterial(*root, coloured(red_albedo)),
			addMaterial(*root, coloured(green_albedo)), addMaterial(*root, emitter(emitted, 0))});
	return root;
}

TEST(CornellBox, WallsMatchARadiositySolve)
{
	// Tolerance: the traced wall means are Monte Carlo estimates; the test
	// measures their standard error (about 0.6% on the walls, 1% on the
	// ceiling, which sees the light only after a bounce) and allows three
	// of them, plus 1.5% for the radiosity's piecewise constant patches
	// (the solves with 8 and with 16 patches a side differ by at most 0.5%
	// in any wall mean here).
	const Radiosity reference(8);
	Reference<SceneNodeRoot> root = cornellScene(4);
	const TracerScene scene(*root, ".");

	const struct
	{
		Wall wall;
		const char* name;
	} walls[] = {{Floor, "floor"}, {Ceiling, "ceiling"}, {Back, "back"}, {Left, "left, red"}, {Right, "right, green"}};
	std::vector<V3> layers(1);
	const int strata = 500;
	for(const auto& w : walls)
	{
		SCOPED_TRACE(w.name);
		const WallFrame frame = wallFrame(w.wall);
		RGB sum = {0, 0, 0}, sum_sq = {0, 0, 0};
		int paths = 0;
		// One path to a jittered point of each stratum of the wall, through
		// the open front; the emitter's strata are left out.
		for(int a = 0; a < strata; ++a)
			for(int b = 0; b < strata; ++b)
			{
				Rng rng(1234 + w.wall, (uint64_t)(a * strata + b));
				const double s = (a + 0.05 + 0.9 * rng.uniform()) / strata, t = (b + 0.05 + 0.9 * rng.uniform()) / strata;
				if(inLight(w.wall, s, t))
					continue;
				std::fill(layers.begin(), layers.end(), V3(0));
				bool hit = false;
				scene.radiance(Ray{eye, normalise(frame.at(s, t) - eye)}, rng, layers, hit);
				const double l[3] = {layers[0].x, layers[0].y, layers[0].z};
				for(int c = 0; c < 3; ++c)
				{
					sum[c] += l[c];
					sum_sq[c] += l[c] * l[c];
				}
				++paths;
			}
		const RGB expected = reference.wallMean(w.wall);
		for(int c = 0; c < 3; ++c)
		{
			SCOPED_TRACE(c);
			const double mean = sum[c] / paths;
			const double error = std::sqrt((sum_sq[c] / paths - mean * mean) / paths);
			// A noisy estimate would pass anything: keep the noise itself small.
			EXPECT_LT(error, 0.012 * expected[c]);
			EXPECT_NEAR(mean, expected[c], 3 * error + 0.015 * expected[c]);
		}
	}
}

TEST(CornellBox, RenderedPictureMeanMatchesARadiositySolve)
{
	// The eye sits 1 in front of the opening with a 53 degree square view:
	// the picture is exactly the opening. The expected mean integrates the
	// solve over the film; 2% allows for the patches and, at 3000 paths a
	// pixel over 64 pixels, for about 0.5% of noise.
	const Radiosity reference(8);
	const int size = 8;
	Reference<SceneNodeRoot> root = cornellScene(size);
	auto scene = std::make_shared<TracerScene>(*root, ".");
	const uint32_t internal = size + 8;
	MasterBuffer buffer(internal, internal, 1, size, size, {}, false);
	std::mutex mutex;
	ProgressiveRender render(scene, buffer, mutex, 2, 5);
	render.setHalt(3000, -1);
	render.start();
	render.waitUntilDone();

	RGB expected = {0, 0, 0};
	const int film_steps = 400;
	for(int a = 0; a < film_steps; ++a)
		for(int b = 0; b < film_steps; ++b)
		{
			const double sx = (a + 0.5) / film_steps - 0.5, sz = 0.5 - (b + 0.5) / film_steps;
			const RGB l = reference.seen(normalise(V3((float)sx, 1, (float)sz)));
			for(int c = 0; c < 3; ++c)
				expected[c] += l[c] / (film_steps * film_steps);
		}
	RGB mean = {0, 0, 0};
	for(uint32_t y = 4; y < 4 + size; ++y)
		for(uint32_t x = 4; x < 4 + size; ++x)
			for(int c = 0; c < 3; ++c)
				mean[c] += buffer.layers[0].image.getPixel(x, y)[c] / (size * size);
	for(int c = 0; c < 3; ++c)
	{
		SCOPED_TRACE(c);
		EXPECT_NEAR(mean[c], expected[c], 0.02 * expected[c]);
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
