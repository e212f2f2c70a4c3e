#include "c4d/camera_object.h"

#include <cmath>

void SetCameraDefaults(BaseContainer& data)
{
	const double focal_length = 36.0;
	const double sensor_width = 36.0;
	data.SetFloat(CAMERA_ZOOM, 1.0);
	data.SetInt32(CAMERA_PROJECTION, CAMERA_PROJECTION_PERSPECTIVE);
	data.SetFloat(CAMERA_FOCAL_LENGTH, focal_length);
	data.SetFloat(CAMERA_SENSOR_WIDTH, sensor_width);
	data.SetFloat(CAMERA_FOV, 2.0 * std::atan(sensor_width / (2.0 * focal_length)));
	data.SetFloat(CAMERA_TARGET_DISTANCE, 2000.0);
	data.SetFloat(CAMERA_FILM_OFFSET_X, 0.0);
	data.SetFloat(CAMERA_FILM_OFFSET_Y, 0.0);
}
