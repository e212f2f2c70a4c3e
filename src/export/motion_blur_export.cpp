#include "export/motion_blur_export.h"

#include "c4d/base_document.h"
#include "c4d/console.h"
#include "export/host_space.h"

#include <algorithm>
#include <cmath>

namespace
{

// The strength of the first motion blur tag from op upward; false without one.
bool motionBlurStrength(const BaseObject* op, double& strength)
{
	for(; op; op = objectAbove(op))
	{
		if(const BaseTag* tag = op->GetTag(Tmotionblur))
		{
			strength = tag->GetDataInstance()->GetFloat(MOTIONBLURTAG_STRENGTH);
			return true;
		}
	}
	return false;
}

Matrix chainMatrix(const std::vector<BaseObject*>& chain)
{
	Matrix m;
	for(const BaseObject* op : chain)
		m = m * op->GetMl();
	return m;
}

void animateDocument(BaseDocument* doc, const BaseTime& time)
{
	doc->SetTime(time);
	for(BaseObject* op = doc->GetFirstObject(); op; op = op->GetNext())
		doc->AnimateObject(op, time, ANIMATEFLAGS_QUICK);
}

} // namespace

void rotationAxisAngle(const Matrix& m, Velorn::Vec3d& axis, double& angle)
{
	// The rotation matrix in the renderer's space, row by row: its columns
	// are the normalised host axes v1, v3, v2 with y and z exchanged, as in
	// the static placement of a model.
	const Velorn::Vec3d c0 = swapYZ(m.v1.GetNormalized());
	const Velorn::Vec3d c1 = swapYZ(m.v3.GetNormalized());
	const Velorn::Vec3d c2 = swapYZ(m.v2.GetNormalized());
	const double r[3][3] = {{c0.x, c1.x, c2.x}, {c0.y, c1.y, c2.y}, {c0.z, c1.z, c2.z}};

	const double cosine = std::clamp((r[0][0] + r[1][1] + r[2][2] - 1) * 0.5, -1.0, 1.0);
	angle = std::acos(cosine);
	const Velorn::Vec3d skew(r[2][1] - r[1][2], r[0][2] - r[2][0], r[1][0] - r[0][1]);
	const double skewLength = std::sqrt(skew.x * skew.x + skew.y * skew.y + skew.z * skew.z);
	if(skewLength > 1e-9)
	{
		axis = Velorn::Vec3d(skew.x / skewLength, skew.y / skewLength, skew.z / skewLength);
		return;
	}
	if(cosine > 0)
	{
		// No rotation: any axis serves.
		axis = Velorn::Vec3d(0, 0, 1);
		angle = 0;
		return;
	}
	// A half turn: the matrix is symmetric, r = 2 a a^T - I, so the axis is
	// read from its largest diagonal entry, where it is most accurate.
	int k = 0;
	for(int i = 1; i < 3; ++i)
		if(r[i][i] > r[k][k])
			k = i;
	double a[3];
	a[k] = std::sqrt(std::max(0.0, (r[k][k] + 1) * 0.5));
	for(int i = 0; i < 3; ++i)
		if(i != k)
			a[i] = r[i][k] / (2 * a[k]);
	axis = Velorn::Vec3d(a[0], a[1], a[2]);
	angle = M_PI;
}

Velorn::KeyFrame placementKeyFrame(const Matrix& m, double time, double scale, const Vector& offset)
{
	Velorn::KeyFrame key;
	key.pos = Velorn::Vec3d(m.off.x * scale - offset.x, m.off.z * scale - offset.z, m.off.y * scale - offset.y);
	key.time = time;
	rotationAxisAngle(m, key.rotation_axis, key.rotation_angle);
	return key;
}

std::vector<BaseObject*> objectChain(BaseObject* op)
{
	std::vector<BaseObject*> chain;
	for(; op; op = objectAbove(op))
		chain.push_back(op);
	std::reverse(chain.begin(), chain.end());
	return chain;
}

bool exportMotionBlur(Velorn::Vector<Velorn::KeyFrame>& keyframes, BaseObject* object, const Matrix& mg,
	const ExportSettings& settings, const std::vector<BaseObject*>& chain, const Vector& offset)
{
	double strength = 0;
	if(chain.empty() || !motionBlurStrength(object, strength))
		return false;
	GePrint(String("SceneExportObjectMotionBlurSG()"));

	BaseDocument* doc = settings.document;
	const int32_t fps = doc->GetFps();
	const double frame = settings.frame;
	const double duration = settings.exposure_duration * fps * strength;
	const double end = frame + duration;
	// Below half a frame this divides by zero, and the loop below does not run.
	const double inv_steps = 1.0 / std::floor(duration + 0.5);

	keyframes.clear();
	keyframes.push_back(placementKeyFrame(mg, 0, settings.scale, offset));
	for(int32_t i = 1; frame + i < end - 0.5; ++i)
	{
		animateDocument(doc, BaseTime(frame + i, fps));
		keyframes.push_back(placementKeyFrame(chainMatrix(chain), i * inv_steps, settings.scale, offset));
	}
	animateDocument(doc, BaseTime(end, fps));
	// The last position keeps the offset: the design's asymmetry.
	keyframes.push_back(placementKeyFrame(chainMatrix(chain), 1.0, settings.scale, Vector()));
	animateDocument(doc, BaseTime(frame, fps));
	return true;
}
