// Calls the C interface in any order, with any handles, numbers and null pointers, and with a host
// whose functions answer anything, fail and throw. Whatever is returned must be a known status, and
// arrays handed out must be readable for as long as they live.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "c/vexa_c.h"
#include "formats/AnimationFile.h"
#include "formats/write_file.h"

namespace {

// The bytes of an input, read off as numbers; zeros after the end.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}

  bool isAtEnd() const { return mSize == 0; }

  template <class T>
  T take() {
    T value{};
    const std::size_t count = std::min(sizeof(T), mSize);
    if (count > 0) std::memcpy(&value, mData, count);
    mData += count;
    mSize -= count;
    return value;
  }
  std::uint32_t below(std::uint32_t limit) { return take<std::uint8_t>() % limit; }
  // Mostly a small index, sometimes anything.
  std::uint32_t index() { return below(8) == 0 ? take<std::uint32_t>() : below(4); }
  std::int32_t frame() { return below(4) == 0 ? take<std::int32_t>() : std::int32_t(below(64)); }
  double number() { return below(3) == 0 ? take<double>() : double(take<std::int8_t>()) / 8; }
  template <class T>
  T* maybe(T* pointer) {
    return below(16) == 0 ? nullptr : pointer;
  }
  const char* name() {
    static const char* const kNames[] = {"a", "b", "c", "", nullptr, "a"};
    return kNames[below(6)];
  }

 private:
  const std::uint8_t* mData;
  std::size_t mSize;
};

// A folder of this process, removed at its end.
const std::string& folder() {
  struct Folder {
    std::string mPath = (std::filesystem::temp_directory_path() / "vexa_c_XXXXXX").string();
    Folder() {
      if (mkdtemp(mPath.data()) == nullptr) std::abort();
    }
    ~Folder() { std::filesystem::remove_all(mPath); }
  };
  static const Folder made;
  return made.mPath;
}

// A good animation file for up to four vertices, made once.
const char* animationFile() {
  static const std::string path = [] {
    vexa::formats::AnimationFile file;
    file.mFrameCounts = {3, 1};
    file.mNodes.resize(1);
    file.mNodes[0].mMatrices.assign(4, vexa::formats::AnimationFile::kIdentity);
    file.mNodes[0].mMatrices[2][12] = 2;
    file.mNodes[0].mLinks = {{0, 1}, {1, 1}, {2, 1}};
    const std::string name = folder() + "/a.amo";
    vexa::formats::writeAnimationFile(file, name);
    return name;
  }();
  return path.c_str();
}

double sink = 0;  // reading into it is what the address sanitizer watches

template <class T>
void readAll(const T* array, std::size_t count) {
  for (std::size_t i = 0; array != nullptr && i < count; ++i) sink = sink + double(array[i]);
}

void readMesh(const vexa_mesh& mesh) {
  readAll(mesh.points, 3 * mesh.point_count);
  readAll(mesh.triangles, 3 * mesh.triangle_count);
  readAll(mesh.materials, mesh.triangle_count);
  if (mesh.uvs != nullptr) readAll(mesh.uvs, 6 * mesh.triangle_count);
}

vexa_key keyOf(Input& input) {
  vexa_key key{};
  key.frame = input.frame() - 1;
  key.type = input.below(9);
  key.curve = std::int32_t(input.below(8)) - 1;
  for (double& x : key.value.vector) x = input.number();
  return key;
}

vexa_path_point pointOf(Input& input) {
  vexa_path_point point{};
  for (double& x : point.position) x = input.number();
  for (double& x : point.before) x = input.number();
  for (double& x : point.after) x = input.number();
  return point;
}

// Answers of a host: 0 nearly always, else a failure or an exception.
int answer(Input& input) {
  switch (input.below(40)) {
    case 0:
      return 7;
    // An exception must not pass through C; the library turns it into a status.
    case 1:
      throw std::runtime_error("host");
    case 2:
      throw 3;
    default:
      return 0;
  }
}

std::uint32_t kindOf(Input& input) {
  // The six kinds that the library treats specially, and ordinary values twice as often.
  static const std::uint32_t kKinds[] = {0, 0, 1, 38, 59, 135, 136, 140};
  return kKinds[input.below(8)];
}

int hostTimeScale(void* user, std::int32_t* out) {
  Input& input = *static_cast<Input*>(user);
  *out = input.below(8) == 0 ? input.take<std::int32_t>() : 25;
  return answer(input);
}
int hostCount(void* user, std::uint32_t* out) {
  Input& input = *static_cast<Input*>(user);
  *out = input.below(4);
  return answer(input);
}
int hostPath(void* user, std::uint32_t path, vexa_host_path* out) {
  Input& input = *static_cast<Input*>(user);
  out->id.words[0] = path + 1;
  out->point_count = input.below(5);
  return answer(input);
}
int hostPoint(void* user, std::uint32_t, std::uint32_t, vexa_path_point* out) {
  Input& input = *static_cast<Input*>(user);
  *out = pointOf(input);
  return answer(input);
}
int hostInstance(void* user, std::uint32_t instance, vexa_host_instance* out) {
  Input& input = *static_cast<Input*>(user);
  out->id.words[0] = instance % 4 + 1;
  out->parent.words[0] = input.below(3) == 0 ? input.below(4) : 0;
  out->class_name = input.name();
  for (double& x : out->position) x = input.number();
  for (double& x : out->scale) x = input.number();
  out->rotation = input.number();
  out->take = input.index();
  out->take_frame = input.frame();
  out->frame_offset = input.frame();
  out->plant_group = std::int32_t(input.below(2));
  out->billboard = std::int32_t(input.below(2));
  return answer(input);
}
int hostProperty(void* user, std::uint64_t, vexa_host_property* out) {
  Input& input = *static_cast<Input*>(user);
  out->kind = kindOf(input);
  out->cyclic = std::int32_t(input.below(2));
  out->repeat_count = input.frame();
  out->path.words[0] = input.below(4);
  out->key_count = input.below(5);
  return answer(input);
}
int hostKey(void* user, std::uint64_t, std::uint32_t, vexa_key* out) {
  Input& input = *static_cast<Input*>(user);
  *out = keyOf(input);
  return answer(input);
}

// All handles there were, living and ended, and the calls on them.
class Caller {
 public:
  explicit Caller(Input& input) : mInput(input) {}
  // Each handle is ended as everything that it might be. Two of the three calls are wrong, and so
  // is every call on a handle that is ended already; none of them may do harm.
  ~Caller() {
    for (void* each : mHandles) {
      vexa_scene_free(static_cast<vexa_scene>(each));
      vexa_player_free(static_cast<vexa_player>(each));
      vexa_host_free(static_cast<vexa_host>(each));
    }
  }

  void call() {
    const vexa_status status = callOne(mInput.below(26));
    // VEXA_INTERNAL is an error of the library's own: a finding.
    if (status < VEXA_OK || status >= VEXA_INTERNAL) std::abort();
    if (status != VEXA_OK && vexa_error()[0] == '\0') std::abort();
  }

 private:
  template <class Handle>
  Handle handle() {
    // A number that was never a handle.
    if (mInput.below(20) == 0) return reinterpret_cast<Handle>(mInput.take<std::uintptr_t>());
    if (mHandles.empty()) return nullptr;
    // One of the last three, of whatever kind: most calls get a handle of the right one.
    return static_cast<Handle>(mHandles[mHandles.size() - 1 - mInput.below(3) % mHandles.size()]);
  }

  template <class Handle>
  vexa_status keep(vexa_status status, Handle made) {
    if (status == VEXA_OK) mHandles.push_back(made);
    return status;
  }

  vexa_status addObject(bool toHost) {
    const std::size_t points = mInput.below(5), triangles = mInput.below(4),
                      takes = mInput.below(4);
    std::vector<float> coordinates(3 * points), uvs(6 * triangles, 0.5f);
    for (float& x : coordinates) x = float(mInput.number());
    std::vector<std::uint32_t> corners(3 * triangles), materials(triangles);
    for (auto& corner : corners) corner = mInput.below(4);
    std::vector<vexa_take> clips(takes);
    for (auto& clip : clips) {
      clip = {mInput.name(), mInput.frame(), mInput.frame(), mInput.number()};
    }
    static const std::string kMissing = folder() + "/missing.amo";
    vexa_object object{};
    object.name = mInput.name();
    // The good file twice: without it nothing could be played.
    const char* files[] = {animationFile(), animationFile(), kMissing.c_str(), nullptr, ""};
    object.animation_file = files[mInput.below(5)];
    object.points = mInput.maybe(coordinates.data());
    object.point_count = points;
    object.triangles = mInput.maybe(corners.data());
    object.triangle_count = triangles;
    object.materials = mInput.maybe(materials.data());
    object.uvs = mInput.maybe(uvs.data());
    object.takes = mInput.maybe(clips.data());
    object.take_count = takes;
    object.anchor_vertex = mInput.index();
    object.elevation = mInput.number();
    std::uint32_t index = 0;
    return toHost ? vexa_host_add_object(handle<vexa_host>(), mInput.maybe(&object), &index)
                  : vexa_scene_add_object(handle<vexa_scene>(), mInput.maybe(&object), nullptr);
  }

  vexa_status addInstance() {
    vexa_instance instance{};
    instance.name = mInput.name();
    instance.class_name = mInput.below(4) == 0 ? "Billboard" : nullptr;
    instance.object = mInput.below(3) == 0 ? VEXA_NONE : mInput.index();
    instance.parent = mInput.below(2) == 0 ? VEXA_NONE : mInput.index();
    for (double& x : instance.position) x = mInput.number();
    for (double& x : instance.scale) x = mInput.number();
    instance.take = mInput.below(3);
    instance.frame_offset = mInput.frame();
    instance.billboard = std::int32_t(mInput.below(2));
    return vexa_scene_add_instance(handle<vexa_scene>(), mInput.maybe(&instance), nullptr);
  }

  vexa_status addValue() {
    std::vector<vexa_key> keys(mInput.below(5));
    const std::uint32_t type = mInput.below(9);
    for (vexa_key& key : keys) {
      key = keyOf(mInput);
      // Mostly one type, which is what a value needs to be playable.
      if (mInput.below(16) != 0) key.type = type;
    }
    const double rate = mInput.number();
    vexa_value value{};
    value.name = mInput.name();
    value.kind = kindOf(mInput);
    value.cyclic = std::int32_t(mInput.below(2));
    value.repeat_count = mInput.frame();
    value.path = mInput.below(4) == 0 ? VEXA_NONE : mInput.index();
    value.instance = mInput.below(4) == 0 ? VEXA_NONE : mInput.index();
    value.rate = mInput.below(2) == 0 ? nullptr : &rate;
    value.keys = mInput.maybe(keys.data());
    value.key_count = keys.size();
    return vexa_scene_add_value(handle<vexa_scene>(), mInput.maybe(&value), nullptr);
  }

  vexa_status addPath() {
    std::vector<vexa_path_point> points(mInput.below(5));
    for (vexa_path_point& point : points) point = pointOf(mInput);
    std::uint32_t index = 0;
    return vexa_scene_add_path(handle<vexa_scene>(), mInput.name(), int(mInput.below(2)),
                               mInput.maybe(points.data()), points.size(), mInput.maybe(&index));
  }

  vexa_status load() {
    std::string text;
    for (std::uint32_t left = mInput.take<std::uint8_t>(); left > 0; --left) {
      text += char(mInput.take<std::uint8_t>());
    }
    const std::string path = folder() + "/s.json";
    vexa::formats::writeFile(path, text);
    vexa_scene scene = nullptr;
    return keep(vexa_scene_load(mInput.maybe(path.c_str()), &scene), scene);
  }

  vexa_status newHost() {
    vexa_host_functions functions{sizeof(functions), hostTimeScale, hostCount,
                                  hostPath,          hostPoint,     hostCount,
                                  hostInstance,      hostProperty,  hostKey};
    // A host that lacks a function.
    if (mInput.below(16) == 0) functions.key = nullptr;
    vexa_host host = nullptr;
    return keep(vexa_host_new(mInput.maybe(&functions), &mInput, &host), host);
  }

  vexa_status sample() {
    std::vector<std::int32_t> frames(mInput.below(6));
    for (auto& frame : frames) frame = mInput.frame();
    std::vector<double> numbers(mInput.below(40));
    return vexa_player_sample(handle<vexa_player>(), mInput.index(), mInput.maybe(frames.data()),
                              frames.size(), mInput.maybe(numbers.data()), numbers.size());
  }

  vexa_status readValue() {
    const double* numbers = nullptr;
    std::size_t count = 0;
    const vexa_status status = vexa_player_value(handle<vexa_player>(), mInput.index(),
                                                 mInput.maybe(&numbers), mInput.maybe(&count));
    if (status == VEXA_OK) readAll(numbers, count);
    return status;
  }

  vexa_status readPlayerMesh() {
    vexa_mesh mesh{};
    const vexa_status status =
        vexa_player_mesh(handle<vexa_player>(), mInput.index(), mInput.maybe(&mesh));
    if (status == VEXA_OK) readMesh(mesh);
    return status;
  }

  vexa_status readHostMesh() {
    vexa_mesh mesh{};
    const vexa_status status = vexa_host_mesh(handle<vexa_host>(), mInput.index(), mInput.index(),
                                              mInput.index(), mInput.maybe(&mesh));
    if (status == VEXA_OK) readMesh(mesh);
    return status;
  }

  vexa_status callOne(std::uint32_t which) {
    vexa_scene scene = nullptr;
    vexa_player player = nullptr;
    std::uint32_t number = 0, other = 0;
    std::size_t count = 0;
    double coordinates[3];
    const double rate = mInput.number();
    vexa_placement placement;
    vexa_number value;
    switch (which) {
      case 0:
        return keep(vexa_scene_new(mInput.maybe(&scene)), scene);
      case 1:
        return load();
      case 2:
        return vexa_scene_set_time_scale(handle<vexa_scene>(), mInput.frame());
      case 3:
        return addPath();
      case 4:
      case 5:
        return addObject(false);
      case 6:
      case 7:
        return addInstance();
      case 8:
      case 9:
        return addValue();
      case 10:
        return keep(vexa_player_new(handle<vexa_scene>(), mInput.maybe(&player)), player);
      case 11:
        return vexa_player_set_frame(handle<vexa_player>(), mInput.frame());
      case 12:
        return vexa_player_counts(handle<vexa_player>(), &number, mInput.maybe(&other));
      case 13:
        return vexa_player_find_value(handle<vexa_player>(), mInput.name(), mInput.maybe(&number));
      case 14:
        return vexa_player_value_size(handle<vexa_player>(), mInput.index(), mInput.maybe(&count));
      case 15:
        return readValue();
      case 16:
        return sample();
      case 17:
        return vexa_player_placement(handle<vexa_player>(), mInput.index(),
                                     mInput.maybe(&placement));
      case 18:
        return vexa_player_world_position(handle<vexa_player>(), mInput.index(), coordinates);
      case 19:
        return readPlayerMesh();
      case 20:
        return newHost();
      case 21:
        return vexa_host_value(handle<vexa_host>(), mInput.take<std::uint64_t>(), mInput.frame(),
                               mInput.maybe(&rate), mInput.maybe(&value),
                               mInput.maybe(coordinates));
      case 22:
        return addObject(true);
      case 23:
        return vexa_host_show(handle<vexa_host>(), mInput.index(), mInput.index());
      case 24:
        return vexa_host_drive(handle<vexa_host>(), mInput.index(), mInput.take<std::uint64_t>(),
                               mInput.frame(), mInput.maybe(&placement));
      default:
        return readHostMesh();
    }
  }

  Input& mInput;
  std::vector<void*> mHandles;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Caller caller(input);
  // Long enough to build a scene and play it; short enough for thousands of inputs a second.
  for (int calls = 0; calls < 60 && !input.isAtEnd(); ++calls) caller.call();
  return 0;
}
