/* A scene built by calls, and a host of one's own. Build: cc example.c $(pkg-config --cflags --libs vexa_c) */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "vexa_c.h"

static void must(vexa_status status) {
  if (status == VEXA_OK) return;
  fprintf(stderr, "example: %s\n", vexa_error());
  exit(1);
}

static vexa_key realKey(int32_t frame, double real, int32_t curve) {
  vexa_key key;
  memset(&key, 0, sizeof(key));
  key.frame = frame;
  key.type = VEXA_REAL;
  key.curve = curve;
  key.value.real = real;
  return key;
}

/* A value with two keys, sampled at five frames in one call. */
static void playAScene(void) {
  const int32_t frames[5] = {0, 25, 50, 75, 100};
  double numbers[5];
  size_t i;
  vexa_key keys[2];
  vexa_value value;
  vexa_scene scene;
  vexa_player player;
  keys[0] = realKey(0, 0, VEXA_SINUS);
  keys[1] = realKey(100, 1, VEXA_LINEAR);
  memset(&value, 0, sizeof(value));
  value.name = "brightness";
  value.path = value.instance = VEXA_NONE;
  value.keys = keys;
  value.key_count = 2;
  must(vexa_scene_new(&scene));
  must(vexa_scene_add_value(scene, &value, NULL));
  must(vexa_player_new(scene, &player));
  must(vexa_player_sample(player, 0, frames, 5, numbers, 5));
  for (i = 0; i < 5; ++i) printf("brightness %3d %.4f\n", (int)frames[i], numbers[i]);
  must(vexa_player_free(player));
}

/* The application's own scene: one property, whose keys are made when they are asked for. */
static int none(void* user, uint32_t* out_count) {
  (void)user;
  *out_count = 0;
  return 0;
}
static int timeScale(void* user, int32_t* out_frames) {
  (void)user;
  *out_frames = 25;
  return 0;
}
static int noPath(void* user, uint32_t path, vexa_host_path* out_path) {
  (void)user, (void)path, (void)out_path;
  return 1;
}
static int noPoint(void* user, uint32_t path, uint32_t point, vexa_path_point* out_point) {
  (void)user, (void)path, (void)point, (void)out_point;
  return 1;
}
static int noInstance(void* user, uint32_t instance, vexa_host_instance* out_instance) {
  (void)user, (void)instance, (void)out_instance;
  return 1;
}
static int property(void* user, uint64_t id, vexa_host_property* out_property) {
  (void)user;
  out_property->kind = VEXA_ORDINARY;
  out_property->key_count = 2;
  return id == 1 ? 0 : 1; /* there is only property 1 */
}
static int key(void* user, uint64_t id, uint32_t index, vexa_key* out_key) {
  const double* height = (const double*)user;
  (void)id;
  *out_key = realKey((int32_t)index * 10, index * *height, VEXA_SQUARE);
  return 0;
}

static void askAHost(void) {
  double height = 8;
  int32_t frame;
  vexa_number number;
  vexa_host host;
  vexa_host_functions functions;
  functions.size = sizeof(functions);
  functions.time_scale = timeScale;
  functions.path_count = none;
  functions.path = noPath;
  functions.path_point = noPoint;
  functions.instance_count = none;
  functions.instance = noInstance;
  functions.property = property;
  functions.key = key;
  must(vexa_host_new(&functions, &height, &host));
  for (frame = 0; frame <= 10; frame += 5) {
    must(vexa_host_value(host, 1, frame, NULL, &number, NULL));
    printf("height %d %.2f\n", (int)frame, number.real);
  }
  if (vexa_host_value(host, 2, 0, NULL, &number, NULL) != VEXA_OK) printf("%s\n", vexa_error());
  must(vexa_host_free(host));
}

int main(void) {
  playAScene();
  askAHost();
  return 0;
}
