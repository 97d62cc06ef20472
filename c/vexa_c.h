/* Vexa for C, and for every language that calls C.
 *
 * Handles are opaque and are checked: a handle that is null, ended, of another kind, or in use by
 * another call is an error, never a crash. A handle serves one call at a time; different handles
 * may be used by different threads.
 *
 * Every function returns a status. On any status but VEXA_OK nothing has changed, unless the
 * function says otherwise, and vexa_error() has a text. No C++ exception leaves a function.
 *
 * Lengths are in scene units, +Z is up, angles are in radians. Names and file names are UTF-8 and
 * are copied, as are all arrays that are passed in. Parameters whose names begin with out are
 * written; they must not be null unless that is said.
 *
 * Members are only ever added at the end of this interface; no function changes its meaning. */
#ifndef VEXA_C_H
#define VEXA_C_H

/* NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using): C compilers read it, too */
#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define VEXA_C_EXPORT __attribute__((visibility("default")))
#else
#define VEXA_C_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef enum vexa_status {
  VEXA_OK = 0,
  VEXA_BAD_HANDLE = 1,   /* null, ended, of another kind, or in use by another call */
  VEXA_BAD_ARGUMENT = 2, /* a null pointer, a number out of range, an array too short */
  VEXA_BAD_INPUT = 3,    /* a scene, model or animation file that cannot be read or played */
  VEXA_HOST_FAILED = 4,  /* a function of the host returned a failure, or threw */
  VEXA_NO_MEMORY = 5,
  VEXA_INTERNAL = 6 /* a fault of Vexa */
} vexa_status;

/* The text of the last failure on this thread, "" before the first one. It lives until the next
 * failure on this thread. */
VEXA_C_EXPORT const char* vexa_error(void);

/* The version of the library, such as "0.1.0"; it lives as long as the process. */
VEXA_C_EXPORT const char* vexa_version(void);

/* ---- Values and keys ---- */

/* How the number of a key is read. */
enum {
  VEXA_VECTOR = 0,  /* vector: x, y, z */
  VEXA_COLOR = 1,   /* color: red, green, blue, alpha, 0 to 255 */
  VEXA_REAL = 2,    /* real */
  VEXA_INTEGER = 4, /* integer */
  VEXA_DATE = 5,    /* date: seconds since 1970-01-01 00:00 UTC */
  VEXA_STEP = 7     /* step: changes at its frame */
};

/* The curve from a key to the next one; any other number holds the key's value. */
enum {
  VEXA_LINEAR = 0,
  VEXA_SQUARE = 1,           /* slow at the start */
  VEXA_ONE_MINUS_SQUARE = 2, /* slow at the end */
  VEXA_SINUS = 3,            /* slow at both ends */
  VEXA_CONSTANT = 4,         /* holds */
  VEXA_DATE_CURVE = 5        /* for dates */
};

/* What a value is; any other number is interpolated from key to key, as VEXA_ORDINARY is. */
enum {
  VEXA_ORDINARY = 0,
  VEXA_POSITION = 1,     /* a position along a path: real keys from 0 to 1 */
  VEXA_TAKE_FRAME = 135, /* the frame that an animated instance shows */
  VEXA_WALK = 136,       /* an animated instance that walks along a path */
  VEXA_FRAME_RATE = 140  /* a frame number from a frame rate */
};

/* 24 bytes, read by the type of the key. */
typedef union vexa_number {
  double vector[3];
  unsigned char color[4];
  double real;
  int32_t integer;
  int64_t date;
  uint32_t step;
} vexa_number;

typedef struct vexa_key {
  int32_t frame; /* -1: a key without a frame, which is ignored */
  uint32_t type; /* VEXA_VECTOR ... */
  int32_t curve; /* VEXA_LINEAR ... */
  vexa_number value;
} vexa_key;

/* ---- Scenes: built by calls, or loaded from a file ---- */

typedef struct vexa_scene_handle* vexa_scene;

/* An empty scene, to be ended by vexa_scene_free. */
VEXA_C_EXPORT vexa_status vexa_scene_new(vexa_scene* out_scene);
/* A scene file (JSON). Files that it names are read relative to it; the text of a fault says where
 * in the file it is. */
VEXA_C_EXPORT vexa_status vexa_scene_load(const char* file, vexa_scene* out_scene);
/* Ends a scene. A null handle is left alone. */
VEXA_C_EXPORT vexa_status vexa_scene_free(vexa_scene scene);

/* Host frames per time unit, 1 or more; 25 in a new scene. */
VEXA_C_EXPORT vexa_status vexa_scene_set_time_scale(vexa_scene scene, int32_t frames);

/* A point of a path. The control points are offsets from the position. */
typedef struct vexa_path_point {
  double position[3];
  double before[3]; /* where the path arrives from */
  double after[3];  /* where it leaves towards */
} vexa_path_point;

/* Adds a path; out_index, which may be null, receives its number. */
VEXA_C_EXPORT vexa_status vexa_scene_add_path(vexa_scene scene, const char* name, int closed,
                                              const vexa_path_point* points, size_t point_count,
                                              uint32_t* out_index);

/* A clip of an animated object. */
typedef struct vexa_take {
  const char* name;
  int32_t frame_count; /* 1 or more */
  int32_t frame_rate;  /* frames per time unit, 1 or more */
  double elevation;    /* height above a path; 0 for the object's */
} vexa_take;

/* An object with a mesh and an animation file. */
typedef struct vexa_object {
  const char* name;
  const char* animation_file;
  const float* points; /* 3 per point: x, y, z */
  size_t point_count;
  const uint32_t* triangles; /* 3 per triangle: indices of points */
  size_t triangle_count;
  const uint32_t* materials; /* 1 per triangle, or null */
  const float* uvs;          /* 6 per triangle: u, v of each corner; or null */
  const vexa_take* takes;    /* in the order of the animation file */
  size_t take_count;
  uint32_t anchor_vertex; /* the point that is led along a path */
  double elevation;       /* default height above a path */
} vexa_object;

VEXA_C_EXPORT vexa_status vexa_scene_add_object(vexa_scene scene, const vexa_object* object,
                                                uint32_t* out_index);

/* Where there is no path, object, parent or instance. */
#define VEXA_NONE UINT32_MAX

typedef struct vexa_instance {
  const char* name;
  const char* class_name; /* null for "ObjectInstance" */
  uint32_t object;        /* VEXA_NONE for none */
  uint32_t parent;        /* an earlier instance, or VEXA_NONE */
  double position[3];     /* in the parent's space */
  double rotation;        /* about +Z */
  double scale[3];
  uint32_t take;
  int32_t frame_offset, start_offset;
  int32_t billboard; /* 1: a "Billboard" turns towards the viewer */
} vexa_instance;

VEXA_C_EXPORT vexa_status vexa_scene_add_instance(vexa_scene scene, const vexa_instance* instance,
                                                  uint32_t* out_index);

typedef struct vexa_value {
  const char* name;
  uint32_t kind; /* VEXA_ORDINARY ... */
  int32_t cyclic, repeat_count;
  uint32_t path;      /* for VEXA_POSITION and VEXA_WALK */
  uint32_t instance;  /* for VEXA_TAKE_FRAME and VEXA_WALK */
  const double* rate; /* handed along with each request, or null */
  const vexa_key* keys;
  size_t key_count; /* all of one type */
} vexa_value;

VEXA_C_EXPORT vexa_status vexa_scene_add_value(vexa_scene scene, const vexa_value* value,
                                               uint32_t* out_index);

/* ---- Playing a scene ---- */

typedef struct vexa_player_handle* vexa_player;

/* Plays a scene, which becomes the player's: its handle ends here, also when this fails. */
VEXA_C_EXPORT vexa_status vexa_player_new(vexa_scene scene, vexa_player* out_player);
/* Ends a player and every array that it handed out. A null handle is left alone. */
VEXA_C_EXPORT vexa_status vexa_player_free(vexa_player player);

/* Shows a frame, 0 or later: computes every value and places the instances. */
VEXA_C_EXPORT vexa_status vexa_player_set_frame(vexa_player player, int32_t frame);

/* How many values and instances the scene has. */
VEXA_C_EXPORT vexa_status vexa_player_counts(vexa_player player, uint32_t* out_values,
                                             uint32_t* out_instances);
/* The number of the value of that name. */
VEXA_C_EXPORT vexa_status vexa_player_find_value(vexa_player player, const char* name,
                                                 uint32_t* out_index);
/* How many numbers a value consists of: 6 for a position (x, y, z and its direction), 3 for a
 * vector, 4 for a colour, else 1. */
VEXA_C_EXPORT vexa_status vexa_player_value_size(vexa_player player, uint32_t value,
                                                 size_t* out_count);
/* The numbers of a value at the frame shown. The array lives until the next call with this player.
 */
VEXA_C_EXPORT vexa_status vexa_player_value(vexa_player player, uint32_t value,
                                            const double** out_numbers, size_t* out_count);
/* The numbers of a value at many frames, one frame after the other: frame_count times
 * vexa_player_value_size. `capacity` is the length of out_numbers in doubles. For a value that
 * drives an instance, the last of the frames is shown afterwards. */
VEXA_C_EXPORT vexa_status vexa_player_sample(vexa_player player, uint32_t value,
                                             const int32_t* frames, size_t frame_count,
                                             double* out_numbers, size_t capacity);

/* Where an instance is at the frame shown. */
typedef struct vexa_placement {
  double position[3]; /* in the parent's space */
  double direction[3];
  double anchor[3]; /* of a walker, in the parent's space */
  double rotation;  /* about +Z */
  uint32_t take;
  int32_t take_frame;
} vexa_placement;

VEXA_C_EXPORT vexa_status vexa_player_placement(vexa_player player, uint32_t instance,
                                                vexa_placement* out_placement);
/* The three coordinates of an instance's origin in the world, through all that enclose it. */
VEXA_C_EXPORT vexa_status vexa_player_world_position(vexa_player player, uint32_t instance,
                                                     double* out_position);

/* A mesh. Its arrays are borrowed; the function that fills it says how long they live. */
typedef struct vexa_mesh {
  const float* points; /* 3 per point: x, y, z */
  size_t point_count;
  const uint32_t* triangles; /* 3 per triangle */
  size_t triangle_count;
  const uint32_t* materials; /* 1 per triangle */
  const float* uvs;          /* 6 per triangle, or null */
} vexa_mesh;

/* How many instances have a mesh. Their meshes are numbered from 0 in the order of the instances.
 */
VEXA_C_EXPORT vexa_status vexa_player_mesh_count(vexa_player player, size_t* out_count);
/* A mesh at the frame shown, in world space. Its points live until the next frame is shown or
 * sampled, its other arrays as long as the player. */
VEXA_C_EXPORT vexa_status vexa_player_mesh(vexa_player player, size_t mesh, vexa_mesh* out_mesh);

/* ---- A host of one's own ---- */

/* The identifier of a path or an instance; all zero for none. */
typedef struct vexa_id {
  uint32_t words[4];
} vexa_id;

typedef struct vexa_host_property {
  uint32_t kind; /* VEXA_ORDINARY ... */
  int32_t cyclic, repeat_count;
  vexa_id path; /* for VEXA_POSITION and VEXA_WALK */
  uint32_t key_count;
} vexa_host_property;

typedef struct vexa_host_path {
  vexa_id id;
  int32_t closed;
  uint32_t point_count;
} vexa_host_path;

typedef struct vexa_host_instance {
  vexa_id id, parent;
  const char* class_name; /* null for "ObjectInstance"; read before the function is called again */
  double position[3], scale[3], direction[3];
  double rotation;
  uint32_t take;
  int32_t take_frame, frame_offset, start_offset;
  int32_t plant_group, billboard;
} vexa_host_instance;

/* The scene as the host has it. Each function gets the host's user pointer, writes what it is asked
 * for, and returns 0; any other number makes the call fail with VEXA_HOST_FAILED. The functions run
 * on the thread of the call, while it lasts; nothing of the scene is kept between calls. A function
 * must not call back with the same vexa_host: that is VEXA_BAD_HANDLE. A C++ exception that leaves
 * a function is caught and is a failure too. */
typedef struct vexa_host_functions {
  size_t size; /* sizeof(vexa_host_functions) */
  int (*time_scale)(void* user, int32_t* out_frames);
  int (*path_count)(void* user, uint32_t* out_count);
  int (*path)(void* user, uint32_t path, vexa_host_path* out_path);
  int (*path_point)(void* user, uint32_t path, uint32_t point, vexa_path_point* out_point);
  int (*instance_count)(void* user, uint32_t* out_count);
  int (*instance)(void* user, uint32_t instance, vexa_host_instance* out_instance);
  int (*property)(void* user, uint64_t property, vexa_host_property* out_property);
  int (*key)(void* user, uint64_t property, uint32_t key, vexa_key* out_key);
} vexa_host_functions;

typedef struct vexa_host_handle* vexa_host;

/* A host that asks these functions, all of which must be there. The table is copied; `user` is
 * handed back to them and may be null. */
VEXA_C_EXPORT vexa_status vexa_host_new(const vexa_host_functions* functions, void* user,
                                        vexa_host* out_host);
/* Ends a host and every array that it handed out. A null handle is left alone. */
VEXA_C_EXPORT vexa_status vexa_host_free(vexa_host host);

/* The value of a property at a frame, 0 or later. `property` is handed to the host's functions.
 * `rate` and out_direction may be null; the direction is zero except for positions. */
VEXA_C_EXPORT vexa_status vexa_host_value(vexa_host host, uint64_t property, int32_t frame,
                                          const double* rate, vexa_number* out_value,
                                          double* out_direction);

/* Adds an animated object, which is copied; its animation file is read when it is first used. */
VEXA_C_EXPORT vexa_status vexa_host_add_object(vexa_host host, const vexa_object* object,
                                               uint32_t* out_object);
/* Makes an instance of the host show an object. An instance shows the object it was given first. */
VEXA_C_EXPORT vexa_status vexa_host_show(vexa_host host, uint32_t instance, uint32_t object);
/* Drives an instance by a property of kind VEXA_TAKE_FRAME or VEXA_WALK. Nothing is written to the
 * host: the placement says where the instance now belongs, and what to answer from then on. */
VEXA_C_EXPORT vexa_status vexa_host_drive(vexa_host host, uint32_t instance, uint64_t property,
                                          int32_t frame, vexa_placement* out_placement);
/* The mesh of an instance at a frame of a take, in the object's space. Its arrays live until the
 * next call for the same instance, or the end of the host. */
VEXA_C_EXPORT vexa_status vexa_host_mesh(vexa_host host, uint32_t instance, uint32_t take,
                                         uint32_t take_frame, vexa_mesh* out_mesh);

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-deprecated-headers, modernize-use-using) */

#endif
