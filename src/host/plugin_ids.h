#pragma once

// The numbers of the plug-in's node types and of the parameters that the
// export reads. The names follow the plug-in's own symbols: vp_ for the
// video post that holds the render settings, ct_ for the camera tag.

// Node types of the plug-in.
enum
{
	ID_LIGHT_TAG = 1020892,
	ID_EXIT_PORTAL_TAG = 1021223,
	ID_CAMERA_TAG = 1022083,
	ID_SUBDIVISION_TAG = 1022667,
	ID_COMPOSITING_TAG = 1029978,
	ID_VELORN_INSTANCE = 1022273,
	ID_SECTION_PLANE = 1028908,
	ID_VIDEO_POST = 1020896,
	ID_VELORN_MATERIAL = 1024337,
};

// Parameters of the video post.
enum
{
	vp_sun_object = 1301,
	vp_turbidity = 1303,
	vp_max_depth = 1330,
	vp_max_rejections = 1331,
	vp_halt_time = 1332,
	vp_save_vli = 1333,
	vp_render_mode = 1334,
	vp_render_mode_path_tracing = 1335,
	vp_render_mode_bidirectional = 1336,
	vp_render_mode_metropolis = 1337,
	vp_render_mode_metropolis_bidirectional = 1338,
	vp_custom_scale = 1340,
	vp_large_mutation_prob = 1350,
	vp_max_change = 1351,
	vp_logging = 1352,
	vp_display_period = 1353,
	vp_image_save_period = 1354,
	vp_save_untonemapped_exr = 1355,
	vp_save_tonemapped_exr = 1356,
	vp_num_threads = 1357,
	vp_cache_trees = 1358,
	vp_bih_threshold = 1362,
	vp_background_sun_sky = 1364,
	vp_background_environment = 1365,
	vp_background = 1368,
	vp_remove_sun = 1381,
	vp_halt_spp = 1382,
	vp_auto_threads = 1383,
	vp_unit = 1386,
	vp_unit_km = 1387,
	vp_unit_m = 1388,
	vp_unit_cm = 1389,
	vp_unit_mm = 1390,
	vp_unit_custom = 1391,
	vp_sun_own_layer = 1392,
	// Where "Render with Velorn" puts the scene and the image.
	vp_export_path = 1393,
	vp_use_document_dir = 1394,
	vp_clay_render = 1397,
	vp_foreground_alpha = 1398,
	// How the renderer is started.
	vp_low_priority = 1399,
	vp_console = 1400,
	vp_network = 1402,
	vp_port = 1403,
	vp_custom_export = 1408,
	// The names of host layers 1 to 10 are 1410 to 1419.
	vp_layer_name_first = 1410,
	vp_animation = 1420,
	vp_output_enabled = 1421,
	vp_output_path = 1422,
	vp_use_render_dir = 1423,
	vp_ambient = 1424,
	vp_wait_for_slaves = 1426,
	vp_glass_acceleration = 1428,
	vp_verbose = 1429,
	vp_vignetting = 1430,
	vp_merge_vertices = 1431,
	vp_render_mode_material_id = 1432,
	// This render is a material preview.
	vp_material_preview = 1433,
	vp_sky_model_captured = 1434,
	vp_gpu = 1435,
	vp_gpu_device = 1436,
	vp_save_png = 1437,
	vp_render_mode_shadow_pass = 1438,
	vp_render_mode_depth_pass = 1439,
};

// Parameters of the camera tag.
enum
{
	ct_white_point = 1917,
	ct_autofocus = 1925,
	ct_exposure_divisor = 1926,
	ct_f_number = 1927,
	ct_film_iso = 1942,
	ct_ev_adjust = 1943,
	ct_tonemap = 1945,
	ct_tonemap_linear = 1946,
	ct_tonemap_reinhard = 1947,
	ct_tonemap_camera = 1948,
	ct_tonemap_scale = 1949,
	ct_post_scale = 1950,
	ct_burn = 1952,
	ct_super_sample = 1960,
	ct_watermark = 1961,
	ct_diffraction_mode = 1962,
	ct_aperture = 1963,
	ct_aperture_circular = 1964,
	ct_aperture_generated = 1965,
	ct_aperture_image = 1966,
	ct_num_blades = 1967,
	ct_blade_offset = 1968,
	ct_blade_curvature_radius = 1969,
	ct_start_angle = 1970,
	ct_aperture_image_file = 1971,
	ct_filter_mn_cubic = 1974,
	ct_filter_gaussian = 1976,
	ct_splat_filter = 1977,
	ct_downsize_filter = 1978,
	ct_obstacle_map = 1979,
	ct_obstacle_map_file = 1980,
	ct_diffraction_none = 1983,
	ct_splat_blur = 1984,
	ct_splat_ring = 1985,
	ct_downsize_blur = 1986,
	ct_downsize_ring = 1987,
	ct_region = 1988,
	ct_region_x1 = 1989,
	ct_region_x2 = 1990,
	ct_region_y1 = 1991,
	ct_region_y2 = 1992,
	ct_info_overlay = 1994,
	ct_filter_radial = 1998,
	ct_downsize_radius = 1999,
	ct_aperture_diffraction = 2000,
	ct_response_function = 2001,
	// Groups of the tag's description.
	ct_group_camera_response = 1941,
	ct_group_scale = 1951,
	ct_group_generated_aperture = 1972,
	ct_group_aperture_image = 1973,
	ct_group_region = 1993,
};

// Parameters of the light tag.
enum
{
	lt_type = 1215,
	lt_type_peak = 1216,
	lt_type_rgb = 1217,
	lt_type_black_body = 1218,
	lt_type_uniform = 1219,
	lt_black_body_temperature = 1224,
	lt_black_body_gain = 1225,
	lt_uniform_value = 1226,
	lt_rgb_colour = 1227,
	lt_rgb_gain = 1228,
	lt_peak_min = 1231,
	lt_peak_width = 1232,
	lt_peak_value = 1233,
	lt_base_value = 1234,
	lt_emission_measure = 1300,
	lt_emission_value = 1301,
	lt_measure_luminous_flux = 1302,
	lt_measure_luminous_intensity = 1304,
	lt_measure_luminance = 1305,
	lt_measure_luminous_emittance = 1306,
	lt_ies = 1307,
	lt_ies_file = 1308,
	lt_emission_scale = 1312,
	lt_layer = 1313,
	lt_preview_button = 1309,
	lt_preview_gadget = 1310,
	lt_preview_file = 1311,
	// Groups of the tag's description: one per spectrum, and the layer's.
	lt_group_blackbody = 1220,
	lt_group_rgb = 1221,
	lt_group_uniform = 1222,
	lt_group_peak = 1223,
	lt_group_layer = 1236,
};

// Parameters of the instance object.
enum
{
	inst_link = 10000,
	inst_display = 10011,
	inst_display_box = 10012,
	inst_display_wires = 10013,
	inst_display_shaded = 10014,
};

// Parameters of the section plane.
enum
{
	sp_cull_geometry = 10016,
	sp_object_list = 10017,
	sp_list_mode = 10018,
	sp_list_include = 10019,
	sp_list_exclude = 10020,
	sp_use_list = 10021,
};

// The command that makes instances of the selected objects.
enum
{
	ID_CREATE_INSTANCES = 1023984,
};

// Parameters of the subdivision tag.
enum
{
	st_max_subdivisions = 1501,
	st_pixel_threshold = 1502,
	st_curvature_threshold = 1503,
	st_view_dependent = 1504,
	st_smoothing = 1505,
	st_displacement_error = 1506,
};

// The switch of the exit portal tag, and the compositing tag's "invisible to
// camera".
enum
{
	ep_enabled = 1100,
	cmp_invisible_to_camera = 1100,
};
