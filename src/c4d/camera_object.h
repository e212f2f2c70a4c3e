#pragma once

#include "c4d/base_container.h"

// Parameters of camera objects, by the application's numbering.
enum
{
	CAMERA_ZOOM = 1000,
	CAMERA_PROJECTION = 1001,
	CAMERA_FOCAL_LENGTH = 500,
	// The width of the film in millimetres.
	CAMERA_SENSOR_WIDTH = 1006,
	// The horizontal field of view in radians.
	CAMERA_FOV = 1008,
	CAMERA_TARGET_DISTANCE = 1010,
	// The shift of the film, in widths of the film.
	CAMERA_FILM_OFFSET_X = 1118,
	CAMERA_FILM_OFFSET_Y = 1119,
};

// Values of CAMERA_PROJECTION.
enum
{
	CAMERA_PROJECTION_PERSPECTIVE = 0,
	CAMERA_PROJECTION_PARALLEL = 1,
};

// Sets the parameters a new camera object has in the host: a 36 mm lens
// on 36 mm film looking 2000 units ahead, perspective, unshifted. Every
// camera object gets them when it is made.
void SetCameraDefaults(BaseContainer& data);
