#include <cstring>
#include <stdexcept>
#include <type_traits>

#include "importer/model_bytes_internal.h"

namespace vexa::importer {

namespace {

// One list of the members serves both directions: Archive is Writer or Reader, and a Reader gets
// the same members to fill that a Writer took.
template <class Archive>
void transfer(Archive& archive, SourceModel::Node& node) {
  archive(node.mName, node.mParent, node.mLocal, node.mPivots, node.mInherit);
}

template <class Archive>
void transfer(Archive& archive, SourceModel::Bone& bone) {
  archive(bone.mName, bone.mNode, bone.mOffset, bone.mInfluences);
}

template <class Archive>
void transfer(Archive& archive, SourceModel::Mesh& mesh) {
  archive(mesh.mName, mesh.mMaterial, mesh.mPoints, mesh.mUvs, mesh.mTriangles, mesh.mBones);
}

template <class Archive>
void transfer(Archive& archive, SourceModel::Material& material) {
  archive(material.mName, material.mColor, material.mHasColor, material.mTexture,
          material.mTextureBytes);
}

template <class Archive, class Key>
void transfer(Archive& archive, SourceModel::Track<Key>& track) {
  archive(track.mKeys, track.mTangents, track.mInterpolation);
}

template <class Archive>
void transfer(Archive& archive, SourceModel::Curve& curve) {
  archive(curve.mPart, curve.mKeys);
}

template <class Archive>
void transfer(Archive& archive, SourceModel::Channel& channel) {
  archive(channel.mNode, channel.mTranslations, channel.mRotations, channel.mScales,
          channel.mCurves, channel.mPivots);
}

template <class Archive>
void transfer(Archive& archive, SourceModel::Clip& clip) {
  archive(clip.mName, clip.mChannels);
}

template <class Archive>
void transfer(Archive& archive, SourceModel& model) {
  archive(model.mNodes, model.mPivots, model.mMeshes, model.mInstances, model.mMaterials,
          model.mClips, model.mAxes, model.mMetresPerUnit, model.mNotes);
}

// Plain values travel as they lie in memory.
template <class T>
constexpr bool kIsPlain = std::is_trivially_copyable_v<T>;

class Writer {
 public:
  template <class... Members>
  void operator()(Members&... members) {
    (put(members), ...);
  }
  std::string take() { return std::move(mBytes); }

 private:
  void append(const void* data, std::size_t count) {
    if (count > 0) mBytes.append(static_cast<const char*>(data), count);
  }

  template <class T>
  void put(T& value) {
    if constexpr (kIsPlain<T>) {
      append(&value, sizeof(value));
    } else {
      transfer(*this, value);
    }
  }
  void put(std::string& text) {
    putCount(text.size());
    append(text.data(), text.size());
  }
  template <class T>
  void put(std::vector<T>& items) {
    putCount(items.size());
    if constexpr (kIsPlain<T>) {
      append(items.data(), items.size() * sizeof(T));
    } else {
      for (T& item : items) put(item);
    }
  }
  void putCount(std::uint64_t count) { append(&count, sizeof(count)); }

  std::string mBytes;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : mBytes(bytes) {}

  template <class... Members>
  void operator()(Members&... members) {
    (get(members), ...);
  }
  void checkAtEnd() const {
    if (!mBytes.empty()) fail();
  }

 private:
  [[noreturn]] static void fail() {
    throw std::runtime_error("the result of the reading process is damaged");
  }

  void copy(void* data, std::size_t count) {
    if (count > mBytes.size()) fail();
    if (count > 0) std::memcpy(data, mBytes.data(), count);
    // What is left is a view that only gets shorter, so nothing can be read twice.
    mBytes.remove_prefix(count);
  }

  template <class T>
  void get(T& value) {
    if constexpr (kIsPlain<T>) {
      copy(&value, sizeof(value));
    } else {
      transfer(*this, value);
    }
  }
  // Any byte may arrive; a bool that is neither 0 nor 1 would be undefined behaviour.
  void get(bool& value) {
    char byte = 0;
    copy(&byte, 1);
    value = byte != 0;
  }
  void get(std::string& text) {
    text.resize(getCount(1));
    copy(text.data(), text.size());
  }
  template <class T>
  void get(std::vector<T>& items) {
    if constexpr (kIsPlain<T>) {
      items.resize(getCount(sizeof(T)));
      copy(items.data(), items.size() * sizeof(T));
    } else {
      // Every item begins with a count or an index, so that a huge number cannot be claimed.
      const std::size_t count = getCount(sizeof(std::int32_t));
      for (std::size_t i = 0; i < count; ++i) get(items.emplace_back());
    }
  }
  std::size_t getCount(std::size_t leastBytesEach) {
    std::uint64_t count = 0;
    copy(&count, sizeof(count));
    // Compared before anything is allocated; a quotient cannot overflow.
    if (count > mBytes.size() / leastBytesEach) fail();
    return std::size_t(count);
  }

  std::string_view mBytes;
};

}  // namespace

std::string packModel(const SourceModel& model) {
  // A copy, because one list of members serves reading as well, which needs to write.
  SourceModel copy = model;
  Writer writer;
  transfer(writer, copy);
  return writer.take();
}

SourceModel unpackModel(std::string_view bytes) {
  SourceModel model;
  Reader reader(bytes);
  transfer(reader, model);
  // Bytes behind the model mean that both sides do not agree about something.
  reader.checkAtEnd();
  return model;
}

}  // namespace vexa::importer
