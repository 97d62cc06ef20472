/* The C interface through C alone: results, life times, and every way to call it wrongly. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "vexa_c.h"

static int failures = 0;

#define CHECK(condition)                                                           \
  do {                                                                             \
    if (!(condition)) {                                                            \
      printf("%s:%d: %s (%s)\n", __FILE__, __LINE__, #condition, vexa_error());    \
      ++failures;                                                                  \
    }                                                                              \
  } while (0)

#define FAILS(call, status, part) \
  CHECK((call) == (status));      \
  CHECK(strstr(vexa_error(), (part)) != NULL)

static const char kFile[] = "slide.amo";

static void put(FILE* file, const void* bytes, size_t size) {
  CHECK(fwrite(bytes, 1, size, file) == size);
}

/* One take of four frames, one node with all three points; frame k moves them by k along x. */
static void writeAnimation(void) {
  const uint32_t head[2] = {101, 1}, frames = 4, nodes = 1, links = 3;
  double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  const double weight = 1;
  uint32_t i;
  FILE* file = fopen(kFile, "wb");
  CHECK(file != NULL);
  put(file, head, sizeof(head));
  put(file, matrix, sizeof(matrix));
  put(file, &frames, 4);
  put(file, &nodes, 4);
  for (i = 0; i < frames; ++i) {
    matrix[12] = i;
    put(file, matrix, sizeof(matrix));
  }
  put(file, &links, 4);
  for (i = 0; i < links; ++i) {
    put(file, &i, 4);
    put(file, &weight, 8);
  }
  CHECK(fclose(file) == 0);
}

static const float kPoints[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
static const uint32_t kTriangle[3] = {0, 1, 2};

static vexa_object slideObject(const vexa_take* take) {
  vexa_object object;
  memset(&object, 0, sizeof(object));
  object.name = "slide";
  object.animation_file = kFile;
  object.points = kPoints;
  object.point_count = 3;
  object.triangles = kTriangle;
  object.triangle_count = 1;
  object.takes = take;
  object.take_count = 1;
  return object;
}

static vexa_take fourFrames(void) {
  vexa_take take;
  memset(&take, 0, sizeof(take));
  take.name = "slide";
  take.frame_count = 4;
  take.frame_rate = 25;
  return take;
}

static vexa_key realKey(int32_t frame, double real) {
  vexa_key key;
  memset(&key, 0, sizeof(key));
  key.frame = frame;
  key.type = VEXA_REAL;
  key.value.real = real;
  return key;
}

static vexa_value plainValue(const char* name, uint32_t kind, const vexa_key* keys, size_t count) {
  vexa_value value;
  memset(&value, 0, sizeof(value));
  value.name = name;
  value.kind = kind;
  value.path = value.instance = VEXA_NONE;
  value.keys = keys;
  value.key_count = count;
  return value;
}

static vexa_instance plainInstance(const char* name, uint32_t object) {
  vexa_instance instance;
  memset(&instance, 0, sizeof(instance));
  instance.name = name;
  instance.object = object;
  instance.parent = VEXA_NONE;
  instance.scale[0] = instance.scale[1] = instance.scale[2] = 1;
  return instance;
}

/* A value, a position on a straight path, and an instance that slides and shows frame for frame. */
static vexa_scene buildScene(void) {
  const vexa_path_point points[2] = {{{0, 0, 0}, {0, 0, 0}, {1, 0, 0}},
                                     {{3, 0, 0}, {-1, 0, 0}, {0, 0, 0}}};
  const vexa_take take = fourFrames();
  const vexa_object object = slideObject(&take);
  vexa_key keys[2];
  vexa_value value;
  vexa_instance instance = plainInstance("one", 0);
  uint32_t index = 99;
  vexa_scene scene = NULL;
  CHECK(vexa_scene_new(&scene) == VEXA_OK);
  CHECK(vexa_scene_set_time_scale(scene, 25) == VEXA_OK);
  CHECK(vexa_scene_add_path(scene, "line", 0, points, 2, &index) == VEXA_OK && index == 0);
  CHECK(vexa_scene_add_object(scene, &object, NULL) == VEXA_OK);
  instance.position[1] = 5;
  CHECK(vexa_scene_add_instance(scene, &instance, &index) == VEXA_OK && index == 0);
  keys[0] = realKey(0, 10);
  keys[1] = realKey(10, 20);
  value = plainValue("level", VEXA_ORDINARY, keys, 2);
  CHECK(vexa_scene_add_value(scene, &value, NULL) == VEXA_OK);
  keys[0] = realKey(0, 0);
  keys[1] = realKey(10, 1);
  value = plainValue("way", VEXA_POSITION, keys, 2);
  value.path = 0;
  CHECK(vexa_scene_add_value(scene, &value, NULL) == VEXA_OK);
  keys[0].type = keys[1].type = VEXA_INTEGER;
  keys[0].frame = 0;
  keys[1].frame = 4;
  keys[0].value.integer = 0;
  keys[1].value.integer = 3;
  value = plainValue("show", VEXA_TAKE_FRAME, keys, 2);
  value.instance = 0;
  CHECK(vexa_scene_add_value(scene, &value, NULL) == VEXA_OK);
  return scene;
}

static void playsAScene(void) {
  vexa_scene scene = buildScene();
  vexa_player player = NULL;
  const int32_t frames[3] = {0, 5, 20};
  double numbers[18];
  const double* shown = NULL;
  size_t count = 0;
  uint32_t values = 0, instances = 0, way = 0;
  vexa_mesh mesh;
  vexa_placement placement;
  double world[3];
  CHECK(vexa_player_new(scene, &player) == VEXA_OK);
  FAILS(vexa_scene_free(scene), VEXA_BAD_HANDLE, "vexa_scene");
  CHECK(vexa_player_counts(player, &values, &instances) == VEXA_OK);
  CHECK(values == 3 && instances == 1);
  CHECK(vexa_player_sample(player, 0, frames, 3, numbers, 3) == VEXA_OK);
  CHECK(numbers[0] == 10 && numbers[1] == 15 && numbers[2] == 20);
  CHECK(vexa_player_find_value(player, "way", &way) == VEXA_OK && way == 1);
  CHECK(vexa_player_sample(player, way, frames, 3, numbers, 18) == VEXA_OK);
  CHECK(fabs(numbers[6] - 1.5) < 1e-5 && numbers[12] == 3);
  CHECK(vexa_player_set_frame(player, 2) == VEXA_OK);
  CHECK(vexa_player_value(player, 0, &shown, &count) == VEXA_OK);
  CHECK(count == 1 && shown[0] == 12);
  CHECK(vexa_player_placement(player, 0, &placement) == VEXA_OK && placement.take_frame == 2);
  CHECK(vexa_player_world_position(player, 0, world) == VEXA_OK && world[1] == 5);
  CHECK(vexa_player_mesh_count(player, &count) == VEXA_OK && count == 1);
  CHECK(vexa_player_mesh(player, 0, &mesh) == VEXA_OK);
  CHECK(mesh.point_count == 3 && mesh.triangle_count == 1 && mesh.triangles[2] == 2);
  CHECK(mesh.points[0] == 2 && mesh.points[1] == 5 && mesh.points[3] == 3);
  FAILS(vexa_player_sample(player, 0, frames, 3, numbers, 2), VEXA_BAD_ARGUMENT, "holds 2 numbers");
  FAILS(vexa_player_sample(player, 9, frames, 3, numbers, 3), VEXA_BAD_ARGUMENT, "no value 9");
  FAILS(vexa_player_sample(player, 0, NULL, 3, numbers, 3), VEXA_BAD_ARGUMENT, "null");
  FAILS(vexa_player_set_frame(player, -1), VEXA_BAD_ARGUMENT, "less than 0");
  FAILS(vexa_player_mesh(player, 1, &mesh), VEXA_BAD_ARGUMENT, "no mesh 1");
  FAILS(vexa_player_mesh(player, 0, NULL), VEXA_BAD_ARGUMENT, "null");
  FAILS(vexa_player_find_value(player, "none", &way), VEXA_BAD_ARGUMENT, "\"none\"");
  FAILS(vexa_host_free((vexa_host)player), VEXA_BAD_HANDLE, "not a living vexa_host");
  CHECK(vexa_player_free(player) == VEXA_OK);
  FAILS(vexa_player_free(player), VEXA_BAD_HANDLE, "not a living vexa_player");
  FAILS(vexa_player_set_frame(player, 0), VEXA_BAD_HANDLE, "not a living");
  CHECK(vexa_player_free(NULL) == VEXA_OK);
}

static void refusesBadScenes(void) {
  vexa_scene scene = buildScene(), loaded = NULL;
  vexa_player player = NULL;
  const vexa_take take = fourFrames();
  vexa_object object = slideObject(&take);
  vexa_key key = realKey(0, NAN);
  vexa_value value = plainValue("new", VEXA_ORDINARY, &key, 1);
  vexa_instance instance = plainInstance("one", 0);
  const uint32_t wrong[3] = {0, 1, 3};
  FAILS(vexa_scene_new(NULL), VEXA_BAD_ARGUMENT, "null");
  FAILS(vexa_scene_load("absent.json", &loaded), VEXA_BAD_INPUT, "absent.json");
  FAILS(vexa_scene_load(NULL, &loaded), VEXA_BAD_ARGUMENT, "file is null");
  FAILS(vexa_scene_set_time_scale(scene, 0), VEXA_BAD_ARGUMENT, "time scale");
  FAILS(vexa_scene_add_value(scene, &value, NULL), VEXA_BAD_ARGUMENT, "not finite");
  key.value.real = 1;
  value.path = 1;
  FAILS(vexa_scene_add_value(scene, &value, NULL), VEXA_BAD_ARGUMENT, "no path 1");
  value.name = "level";
  FAILS(vexa_scene_add_value(scene, &value, NULL), VEXA_BAD_ARGUMENT, "already");
  FAILS(vexa_scene_add_instance(scene, &instance, NULL), VEXA_BAD_ARGUMENT, "already");
  instance.name = "two";
  instance.take = 1;
  FAILS(vexa_scene_add_instance(scene, &instance, NULL), VEXA_BAD_ARGUMENT, "take");
  FAILS(vexa_scene_add_object(scene, &object, NULL), VEXA_BAD_ARGUMENT, "already");
  object.name = "other";
  object.triangles = wrong;
  FAILS(vexa_scene_add_object(scene, &object, NULL), VEXA_BAD_ARGUMENT, "does not exist");
  value = plainValue("lost", VEXA_WALK, &key, 1);
  CHECK(vexa_scene_add_value(scene, &value, NULL) == VEXA_OK);
  FAILS(vexa_player_new(scene, &player), VEXA_BAD_INPUT, "\"lost\"");
  CHECK(player == NULL);
  FAILS(vexa_scene_free(scene), VEXA_BAD_HANDLE, "vexa_scene");
}

/* A host whose every number comes from here. */
typedef struct Host {
  vexa_host handle;
  int failing; /* this function fails: 1 property, 2 key, 3 instance */
  int calls;
} Host;

static int hostTimeScale(void* user, int32_t* out) {
  (void)user;
  *out = 25;
  return 0;
}
static int hostPathCount(void* user, uint32_t* out) {
  (void)user;
  *out = 1;
  return 0;
}
static int hostPath(void* user, uint32_t path, vexa_host_path* out) {
  (void)user;
  out->id.words[3] = 70 + path;
  out->point_count = 2;
  return 0;
}
static int hostPathPoint(void* user, uint32_t path, uint32_t point, vexa_path_point* out) {
  (void)user;
  (void)path;
  memset(out, 0, sizeof(*out));
  out->position[1] = 100.0 * point;
  out->after[1] = point == 0 ? 100.0 / 3 : 0;
  out->before[1] = point == 1 ? -100.0 / 3 : 0;
  return 0;
}
static int hostInstanceCount(void* user, uint32_t* out) {
  (void)user;
  *out = 1;
  return 0;
}
static int hostInstance(void* user, uint32_t instance, vexa_host_instance* out) {
  const Host* host = (const Host*)user;
  out->id.words[3] = 7 + instance;
  return host->failing == 3 ? 42 : 0;
}
static int hostProperty(void* user, uint64_t property, vexa_host_property* out) {
  Host* host = (Host*)user;
  ++host->calls;
  if (host->calls == 1) { /* from inside a call, the handle is taken */
    vexa_number number;
    CHECK(vexa_host_value(host->handle, property, 0, NULL, &number, NULL) == VEXA_BAD_HANDLE);
  }
  out->kind = (uint32_t)property;
  out->key_count = 2;
  if (property == VEXA_WALK || property == VEXA_POSITION) out->path.words[3] = 70;
  return host->failing == 1 ? 1 : 0;
}
static int hostKey(void* user, uint64_t property, uint32_t key, vexa_key* out) {
  const Host* host = (const Host*)user;
  *out = realKey(key == 0 ? 0 : 4, property == VEXA_POSITION ? key : 8.0 * key);
  return host->failing == 2 ? -5 : 0;
}

static vexa_host_functions hostFunctions(void) {
  vexa_host_functions functions;
  functions.size = sizeof(functions);
  functions.time_scale = hostTimeScale;
  functions.path_count = hostPathCount;
  functions.path = hostPath;
  functions.path_point = hostPathPoint;
  functions.instance_count = hostInstanceCount;
  functions.instance = hostInstance;
  functions.property = hostProperty;
  functions.key = hostKey;
  return functions;
}

static void asksAHost(void) {
  Host host = {NULL, 0, 0};
  vexa_host_functions functions = hostFunctions();
  const vexa_take take = fourFrames();
  const vexa_object object = slideObject(&take);
  vexa_number number;
  double direction[3];
  vexa_placement placement;
  vexa_mesh mesh;
  uint32_t slide = 9;
  CHECK(vexa_host_new(&functions, &host, &host.handle) == VEXA_OK);
  CHECK(vexa_host_value(host.handle, VEXA_ORDINARY, 2, NULL, &number, NULL) == VEXA_OK);
  CHECK(number.real == 4);
  CHECK(vexa_host_value(host.handle, VEXA_POSITION, 2, NULL, &number, direction) == VEXA_OK);
  CHECK(fabs(number.vector[1] - 50) < 1e-3 && direction[1] > 0);
  CHECK(vexa_host_add_object(host.handle, &object, &slide) == VEXA_OK && slide == 0);
  FAILS(vexa_host_mesh(host.handle, 0, 0, 0, &mesh), VEXA_BAD_ARGUMENT, "shows no object");
  CHECK(vexa_host_show(host.handle, 0, slide) == VEXA_OK);
  CHECK(vexa_host_show(host.handle, 0, slide) == VEXA_OK);
  CHECK(vexa_host_mesh(host.handle, 0, 0, 3, &mesh) == VEXA_OK && mesh.points[0] == 3);
  CHECK(vexa_host_drive(host.handle, 0, VEXA_TAKE_FRAME, 2, &placement) == VEXA_OK);
  CHECK(placement.take_frame == 2);
  CHECK(vexa_host_drive(host.handle, 0, VEXA_WALK, 2, &placement) == VEXA_OK);
  CHECK(fabs(placement.anchor[1] - 2) < 1e-3 && fabs(placement.direction[1] - 1) < 1e-6);
  FAILS(vexa_host_mesh(host.handle, 0, 0, 4, &mesh), VEXA_BAD_ARGUMENT, "no such frame");
  FAILS(vexa_host_drive(host.handle, 1, VEXA_WALK, 2, &placement), VEXA_BAD_ARGUMENT, "instance");
  FAILS(vexa_host_drive(host.handle, 0, VEXA_ORDINARY, 2, &placement), VEXA_BAD_ARGUMENT, "drives");
  FAILS(vexa_host_value(host.handle, VEXA_WALK, 2, NULL, &number, NULL), VEXA_BAD_ARGUMENT, "drive");
  host.failing = 1;
  FAILS(vexa_host_value(host.handle, 0, 2, NULL, &number, NULL), VEXA_HOST_FAILED, "property");
  host.failing = 2;
  FAILS(vexa_host_value(host.handle, 0, 2, NULL, &number, NULL), VEXA_HOST_FAILED, "with -5");
  host.failing = 3;
  FAILS(vexa_host_drive(host.handle, 0, VEXA_WALK, 2, &placement), VEXA_HOST_FAILED, "instance");
  host.failing = 0;
  CHECK(vexa_host_drive(host.handle, 0, VEXA_TAKE_FRAME, 2, &placement) == VEXA_OK);
  CHECK(vexa_host_free(host.handle) == VEXA_OK);
  FAILS(vexa_host_value(host.handle, 0, 2, NULL, &number, NULL), VEXA_BAD_HANDLE, "vexa_host");
  functions.key = NULL;
  FAILS(vexa_host_new(&functions, &host, &host.handle), VEXA_BAD_ARGUMENT, "null");
  functions.size = 3;
  FAILS(vexa_host_new(&functions, &host, &host.handle), VEXA_BAD_ARGUMENT, "version");
}

int main(void) {
  CHECK(strcmp(vexa_error(), "") == 0);
  CHECK(vexa_version()[0] != '\0');
  writeAnimation();
  playsAScene();
  refusesBadScenes();
  asksAHost();
  CHECK(remove(kFile) == 0);
  printf("vexa_c: %d failures\n", failures);
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
