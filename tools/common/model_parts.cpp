// Our own OBJ, PLY and STL readers, in records of their own.
#include "model_parts.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace {

// Text read a line and a token at a time.
struct Text {
  const char* p;
  const char* end;
  bool AtEnd() const { return p >= end; }
  void SkipBlanks() {
    while (p < end && (*p == ' ' || *p == '\t' || *p == '\r')) ++p;
  }
  void NextLine() {
    const void* nl = memchr(p, '\n', size_t(end - p));
    p = nl != nullptr ? static_cast<const char*>(nl) + 1 : end;
  }
  // The next token of this line, empty at its end.
  std::string_view Token() {
    SkipBlanks();
    const char* start = p;
    while (p < end && *p != ' ' && *p != '\t' && *p != '\r' && *p != '\n') ++p;
    return {start, size_t(p - start)};
  }
  // The rest of the line, without its ending blanks.
  std::string_view Rest() {
    SkipBlanks();
    const char* start = p;
    while (p < end && *p != '\n') ++p;
    const char* last = p;
    while (last > start && (last[-1] == '\r' || last[-1] == ' ' || last[-1] == '\t')) --last;
    return {start, size_t(last - start)};
  }
};

template <class T>
bool Parse(std::string_view s, T* out) {
  const auto r = std::from_chars(s.data(), s.data() + s.size(), *out);
  return r.ec == std::errc() && r.ptr == s.data() + s.size();
}

#if defined(_LIBCPP_VERSION)
// This libc++ (emscripten's) reads no floating point with from_chars:
// strtod, correctly rounded too, on a terminated copy, refusing what
// from_chars would (leading space, hexadecimal).
template <class F>
bool ParseFloat(std::string_view s, F* out, F (*convert)(const char*, char**)) {
  char token[128];
  if (s.empty() || s.size() >= sizeof token || s[0] == ' ' || (s[0] >= '\t' && s[0] <= '\r')) return false;
  for (char c : s)
    if (c == 'x' || c == 'X') return false;
  memcpy(token, s.data(), s.size());
  token[s.size()] = '\0';
  char* end = nullptr;
  *out = convert(token, &end);
  return end == token + s.size();
}
bool Parse(std::string_view s, float* out) { return ParseFloat(s, out, strtof); }
bool Parse(std::string_view s, double* out) { return ParseFloat(s, out, strtod); }
#endif

template <class T>
bool Number(std::string_view s, T* out) {
  if (!s.empty() && s[0] == '+') s.remove_prefix(1);
  return Parse(s, out);
}

// Tells the progress every 64k steps of a reader's loop.
struct Ticker {
  const ReadProgress* progress;
  const char* begin;
  long long total;
  unsigned count = 0;
  void Tick(const char* at, size_t triangles) {
    if (progress != nullptr && (++count & 0xFFFF) == 0)
      progress->call(progress->user, at - begin, total, (long long)triangles);
  }
};

using Part = ModelPart;
using OwnMaterial = ModelMaterial;

// ---- OBJ ----

// A position, texture and normal index triple: one vertex of ours, so a
// corner that differs in its normal keeps the edge the file draws.
struct Key {
  long long p, t, n;
  bool operator==(const Key& o) const { return p == o.p && t == o.t && n == o.n; }
};

// Keys to numbers, open addressed in two flat arrays: a model of millions
// of corners looks up each one, and a node-based map spends more time
// allocating and freeing than reading.
class KeyIndex {
 public:
  // The number stored for key, or value stored for it now when it is new.
  unsigned Find(const Key& key, unsigned value, bool* fresh) {
    if (2 * (used_ + 1) > slots_.size()) Grow();
    const size_t mask = slots_.size() - 1;
    for (size_t i = Hash(key) & mask;; i = (i + 1) & mask) {
      Slot& slot = slots_[i];
      if (slot.value == kEmpty) {
        slot = {key, value};
        used_++;
        *fresh = true;
        return value;
      }
      if (slot.key == key) {
        *fresh = false;
        return slot.value;
      }
    }
  }
  unsigned Find(const Key& key, unsigned value) {
    bool fresh;
    return Find(key, value, &fresh);
  }
  size_t size() const { return used_; }

 private:
  static constexpr unsigned kEmpty = ~0u;
  // A key and its number side by side: one cache line a probe.
  struct Slot {
    Key key;
    unsigned value = kEmpty;
  };
  // Every bit of the key reaches the low bits the table uses: coordinates'
  // bits differ mostly in their high bits, indexes in their low ones.
  static size_t Hash(const Key& k) {
    uint64_t h = uint64_t(k.p) * 0x9E3779B97F4A7C15ull + uint64_t(k.t) * 0xC2B2AE3D27D4EB4Full +
                 uint64_t(k.n) * 0x165667B19E3779F9ull;
    h = (h ^ h >> 33) * 0xFF51AFD7ED558CCDull;
    h = (h ^ h >> 33) * 0xC4CEB9FE1A85EC53ull;
    return size_t(h ^ h >> 33);
  }
  void Grow() {
    std::vector<Slot> slots(slots_.empty() ? 1024 : 2 * slots_.size());
    const size_t mask = slots.size() - 1;
    for (const Slot& old : slots_) {
      if (old.value == kEmpty) continue;
      size_t i = Hash(old.key) & mask;
      while (slots[i].value != kEmpty) i = (i + 1) & mask;
      slots[i] = old;
    }
    slots_.swap(slots);
  }
  std::vector<Slot> slots_;
  size_t used_ = 0;
};

// Corners into vertices as assimp's cleaning makes them: one vertex a
// position, texture and normal; a corner without a normal of its own shares
// a vertex only with faces that turn less than 80 degrees from its face, so
// the hard edges of a file without normals stay hard.
struct Joiner {
  static constexpr unsigned kNone = ~0u;
  KeyIndex exact;
  // Corners without a normal: the first cluster of a key, straight by
  // position where the corner has no texture index either (the common case,
  // and a look-up that stays in the cache), else through a hash.
  std::vector<unsigned> byPosition;
  KeyIndex bent;
  // The face normal that began a cluster and its length, its vertex, and
  // the next cluster of the same key.
  struct Cluster {
    Vec3 normal;
    float length;
    unsigned vertex, next;
  };
  std::vector<Cluster> clusters;

  // The vertex of a corner whose key says all that sets it apart.
  unsigned Exact(Part& part, const Key& key, const Vec3& position, const Vec3& uv) {
    bool fresh;
    const unsigned at = exact.Find(key, unsigned(part.vertices.size()), &fresh);
    if (fresh) part.vertices.push_back(position), part.uvs.push_back(uv);
    return at;
  }

  unsigned Corner(Part& part, const Key& key, const Vec3& position, const Vec3& uv, const Vec3& faceNormal,
                  float faceLength) {
    if (key.n >= 0) return Exact(part, key, position, uv);
    const unsigned vertex = unsigned(part.vertices.size());
    constexpr float kCos80 = 0.173648f;
    unsigned* first = nullptr;  // where a key's first cluster is kept, for the direct look-up
    unsigned head;
    if (key.t < 0) {
      if (size_t(key.p) >= byPosition.size())
        byPosition.resize(size_t(key.p) + 1 + byPosition.size() / 2, kNone);
      first = &byPosition[size_t(key.p)];
      head = *first;
    } else {
      // A fresh key is given the cluster made below.
      bool fresh;
      head = bent.Find(key, unsigned(clusters.size()), &fresh);
      if (fresh) head = kNone;
    }
    unsigned last = kNone;
    for (unsigned c = head; c != kNone; last = c, c = clusters[c].next) {
      const Cluster& cluster = clusters[c];
      if (cluster.normal * faceNormal > kCos80 * cluster.length * faceLength) return cluster.vertex;
    }
    if (last != kNone)
      clusters[last].next = unsigned(clusters.size());
    else if (first != nullptr)
      *first = unsigned(clusters.size());
    clusters.push_back({faceNormal, faceNormal.Length(), vertex, kNone});
    part.vertices.push_back(position), part.uvs.push_back(uv);
    return vertex;
  }
};

// The normal of a polygon of any size (Newell's sum), not made unit.
Vec3 FaceNormal(const std::vector<Vec3>& corners) {
  Vec3 n(0, 0, 0);
  for (size_t i = 0; i < corners.size(); i++) {
    const Vec3& a = corners[i];
    const Vec3& b = corners[(i + 1) % corners.size()];
    n += Vec3((a.y - b.y) * (a.z + b.z), (a.z - b.z) * (a.x + b.x), (a.x - b.x) * (a.y + b.y));
  }
  return n;
}

// An index of a list of count entries: 1-based, or negative counting back
// from the end; -1 for none (empty), -2 when out of range or not a number.
long long ObjIndex(std::string_view s, size_t count) {
  if (s.empty()) return -1;
  long long i = 0;
  if (!Number(s, &i) || i == 0) return -2;
  i = i > 0 ? i - 1 : (long long)count + i;
  return i >= 0 && i < (long long)count ? i : -2;
}

// A library named with another extension is also looked for as .mtl, as
// assimp looks for it.
void ReadMaterialLibrary(const std::string& path, std::vector<OwnMaterial>* out) {
  std::string bytes;
  const size_t dot = path.rfind('.');
  if (!ReadFile(path.c_str(), &bytes) &&
      (dot == std::string::npos || !ReadFile((path.substr(0, dot) + ".mtl").c_str(), &bytes)))
    return;
  Text t{bytes.data(), bytes.data() + bytes.size()};
  OwnMaterial* current = nullptr;
  for (; !t.AtEnd(); t.NextLine()) {
    const std::string_view word = t.Token();
    if (word == "newmtl") {
      // A library's material without Kd is 0.8 grey, as assimp reads it.
      out->push_back({std::string(t.Rest()), Color3(0.8f, 0.8f, 0.8f)});
      current = &out->back();
    } else if (current != nullptr && word == "Kd") {
      float c[3] = {0.8f, 0.8f, 0.8f};
      for (float& v : c) Number(t.Token(), &v);
      current->diffuse = Color3(c[0], c[1], c[2]);
    } else if (current != nullptr && word == "d") {
      Number(t.Token(), &current->opacity);
    } else if (current != nullptr && word == "map_Kd") {
      // Options come first; the file name is the last token.
      std::string_view last;
      for (std::string_view token = t.Token(); !token.empty(); token = t.Token()) last = token;
      current->texture = std::string(last);
    }
  }
}

bool ReadObj(std::string_view bytes, const std::string& folder, ModelParts* out, std::string* error,
             const ReadProgress* progress) {
  Ticker ticker{progress, bytes.data(), (long long)bytes.size()};
  std::vector<Vec3> positions, uvs;
  size_t normals = 0;
  std::vector<OwnMaterial> library, used;
  std::vector<Part> parts;
  std::vector<Joiner> joined;
  std::vector<Key> keys;
  std::vector<Vec3> corners;
  size_t part = 0;
  auto usePart = [&](const std::string& name) {
    for (size_t i = 0; i < used.size(); i++)
      if (used[i].name == name) return i;
    used.push_back({name});
    parts.emplace_back();
    joined.emplace_back();
    return used.size() - 1;
  };
  usePart("");
  Text t{bytes.data(), bytes.data() + bytes.size()};
  long long line = 1;
  for (; !t.AtEnd(); t.NextLine(), line++) {
    ticker.Tick(t.p, parts[part].sizes.size());
    const std::string_view word = t.Token();
    if (word == "v" || word == "vt") {
      float c[3] = {0, 0, 0};
      const int need = word == "v" ? 3 : 1;
      for (int i = 0; i < 3; i++) {
        const std::string_view token = t.Token();
        if (token.empty() && i >= need) break;
        if (!Number(token, &c[i])) {
          *error = "line " + std::to_string(line) + ": a coordinate is not a number";
          return false;
        }
      }
      if (word == "v")
        positions.emplace_back(c[0], c[1], c[2]);
      else
        uvs.emplace_back(c[0], 1.0f - c[1], 0.0f);  // rows from the top, as images are stored
    } else if (word == "vn") {
      normals++;
    } else if (word == "mtllib") {
      for (std::string_view name = t.Token(); !name.empty(); name = t.Token())
        ReadMaterialLibrary(folder + std::string(name), &library);
    } else if (word == "usemtl") {
      part = usePart(std::string(t.Rest()));
    } else if (word == "f") {
      keys.clear();
      corners.clear();
      for (std::string_view corner = t.Token(); !corner.empty(); corner = t.Token()) {
        // Position, texture, normal; any further indices are ignored.
        std::string_view field[3];
        for (int i = 0; i < 3 && !corner.empty(); i++) {
          const size_t slash = corner.find('/');
          field[i] = corner.substr(0, slash);
          corner = slash == std::string_view::npos ? std::string_view() : corner.substr(slash + 1);
        }
        const Key key{ObjIndex(field[0], positions.size()), ObjIndex(field[1], uvs.size()),
                      ObjIndex(field[2], normals)};
        if (key.p < 0 || key.t == -2 || key.n == -2) {
          *error = "line " + std::to_string(line) + ": a face corner names no vertex of the file";
          return false;
        }
        keys.push_back(key);
        corners.push_back(positions[size_t(key.p)]);
      }
      if (keys.size() < 3) {
        *error = "line " + std::to_string(line) + ": a face of fewer than three corners";
        return false;
      }
      const Vec3 normal = FaceNormal(corners);
      const float length = normal.Length();
      Part& target = parts[part];
      for (size_t i = 0; i < keys.size(); i++)
        target.corners.push_back(joined[part].Corner(
            target, keys[i], corners[i], keys[i].t >= 0 ? uvs[size_t(keys[i].t)] : Vec3(), normal, length));
      target.sizes.push_back(unsigned(keys.size()));
    }
  }
  // Material libraries may come after the faces that use them.
  for (OwnMaterial& m : used)
    for (const OwnMaterial& l : library)
      if (l.name == m.name) m = l;
  out->parts = std::move(parts);
  out->materials = std::move(used);
  return true;
}

// ---- PLY ----

enum PlyType { kNone, kInt8, kUint8, kInt16, kUint16, kInt32, kUint32, kFloat32, kFloat64 };

PlyType PlyTypeOf(std::string_view s) {
  static const struct {
    const char* name;
    PlyType type;
  } kNames[] = {{"char", kInt8},     {"int8", kInt8},       {"uchar", kUint8},    {"uint8", kUint8},
                {"short", kInt16},   {"int16", kInt16},     {"ushort", kUint16},  {"uint16", kUint16},
                {"int", kInt32},     {"int32", kInt32},     {"uint", kUint32},    {"uint32", kUint32},
                {"float", kFloat32}, {"float32", kFloat32}, {"double", kFloat64}, {"float64", kFloat64}};
  for (const auto& n : kNames)
    if (s == n.name) return n.type;
  return kNone;
}

int PlySize(PlyType t) {
  static const int kSizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8};
  return kSizes[t];
}

struct PlyProperty {
  std::string name;
  PlyType type = kNone, countType = kNone;  // countType: a list
};

struct PlyElement {
  std::string name;
  long long count = 0;
  std::vector<PlyProperty> properties;
};

// Values read one at a time from the body, in ASCII or either byte order.
struct PlyBody {
  const char* p;
  const char* end;
  int format;  // 0 ASCII, 1 little-endian, 2 big-endian
  bool ok = true;

  double Read(PlyType type) {
    if (format == 0) {
      Text t{p, end};
      while (t.p < end && (*t.p == '\n' || *t.p == ' ' || *t.p == '\t' || *t.p == '\r')) ++t.p;
      const std::string_view token = t.Token();
      p = t.p;
      double v = 0;
      long long i = 0;
      if (type == kFloat32 || type == kFloat64 ? Number(token, &v)
                                               : (Number(token, &i) && (v = double(i), true)))
        return v;
      ok = false;
      return 0;
    }
    const int size = PlySize(type);
    if (end - p < size) {
      ok = false;
      return 0;
    }
    unsigned char b[8];
    for (int i = 0; i < size; i++) b[i] = static_cast<unsigned char>(p[format == 1 ? i : size - 1 - i]);
    p += size;
    uint64_t u = 0;
    for (int i = size - 1; i >= 0; i--) u = u << 8 | b[i];
    switch (type) {
      case kInt8:
        return double(int8_t(u));
      case kUint8:
        return double(uint8_t(u));
      case kInt16:
        return double(int16_t(u));
      case kUint16:
        return double(uint16_t(u));
      case kInt32:
        return double(int32_t(u));
      case kUint32:
        return double(uint32_t(u));
      case kFloat32: {
        float f;
        const uint32_t w = uint32_t(u);
        memcpy(&f, &w, 4);
        return f;
      }
      default: {
        double d;
        memcpy(&d, &u, 8);
        return d;
      }
    }
  }
};

// The common layouts of binary little-endian files, read without a value
// at a time: float x, y and z among any other scalar properties, and faces
// of one list of 8-bit counts and 32-bit indices. False when the element is
// laid out otherwise; the general loop reads it then.
bool FastVertices(const PlyElement& e, const int xyz[3], PlyBody* body, Part* part, Ticker* ticker) {
  size_t stride = 0, at[3] = {0, 0, 0};
  for (size_t i = 0; i < e.properties.size(); i++) {
    const PlyProperty& p = e.properties[i];
    if (p.countType != kNone) return false;
    for (int k = 0; k < 3; k++)
      if (xyz[k] == int(i)) {
        if (p.type != kFloat32) return false;
        at[k] = stride;
      }
    stride += size_t(PlySize(p.type));
  }
  // The caller has checked that the file holds count elements of stride bytes.
  for (long long n = 0; n < e.count; n++, body->p += stride) {
    ticker->Tick(body->p, 0);
    float c[3];
    for (int k = 0; k < 3; k++) memcpy(&c[k], body->p + at[k], 4);
    part->vertices.emplace_back(c[0], c[1], c[2]);
  }
  return true;
}

bool FastFaces(const PlyElement& e, size_t vertexCount, PlyBody* body, Part* part, Ticker* ticker) {
  if (e.properties.size() != 1 || e.properties[0].countType != kUint8 ||
      (e.properties[0].type != kInt32 && e.properties[0].type != kUint32))
    return false;
  part->corners.reserve(size_t(e.count) * 3);
  part->sizes.reserve(size_t(e.count));
  for (long long n = 0; n < e.count; n++) {
    ticker->Tick(body->p, part->sizes.size());
    if (body->p >= body->end) return body->ok = false, true;
    const unsigned count = static_cast<unsigned char>(*body->p++);
    if (size_t(body->end - body->p) < 4ull * count) return body->ok = false, true;
    // Indices are checked as unsigned: a negative int32 is out of range too.
    for (unsigned k = 0; k < count; k++) {
      uint32_t v;
      memcpy(&v, body->p + 4 * k, 4);
      if (v >= vertexCount) return body->ok = false, true;
      if (count >= 3) part->corners.push_back(v);
    }
    if (count >= 3) part->sizes.push_back(count);
    body->p += 4 * count;
  }
  return true;
}

bool ReadPly(std::string_view bytes, ModelParts* out, std::string* error, const ReadProgress* progress) {
  Ticker ticker{progress, bytes.data(), (long long)bytes.size()};
  const char* data = bytes.data();
  const char* end = data + bytes.size();
  Text t{data, end};
  if (t.Token() != "ply") {
    *error = "not a PLY file";
    return false;
  }
  t.NextLine();
  int format = -1;
  bool known = true;  // every count and type of the header one this reader knows
  std::vector<PlyElement> elements;
  bool ended = false;
  for (; !t.AtEnd() && !ended; t.NextLine()) {
    const std::string_view word = t.Token();
    if (word == "format") {
      const std::string_view f = t.Token();
      format = f == "ascii" ? 0 : f == "binary_little_endian" ? 1 : f == "binary_big_endian" ? 2 : -1;
    } else if (word == "element") {
      PlyElement e{std::string(t.Token())};
      if (!Number(t.Token(), &e.count) || e.count < 0) known = false;
      elements.push_back(e);
    } else if (word == "property" && !elements.empty()) {
      PlyProperty prop;
      std::string_view type = t.Token();
      if (type == "list") {
        prop.countType = PlyTypeOf(t.Token());
        type = t.Token();
        if (prop.countType == kNone || prop.countType == kFloat32 || prop.countType == kFloat64)
          known = false;
      }
      prop.type = PlyTypeOf(type);
      prop.name = std::string(t.Token());
      if (prop.type == kNone) known = false;
      elements.back().properties.push_back(prop);
    } else if (word == "end_header") {
      ended = true;
    }
  }
  if (!ended || format < 0 || !known) {
    *error = ended ? "a PLY header this reader does not know" : kPlyHeaderUnended;
    return false;
  }
  PlyBody body{t.p, end, format};
  std::vector<Part> parts(1);
  Part& part = parts[0];
  size_t vertexCount = 0;
  for (const PlyElement& e : elements) {
    // Each element takes at least a byte a value (two in ASCII): a count the
    // file cannot hold is refused before anything is allocated.
    long long least = 0;
    for (const PlyProperty& p : e.properties)
      least += format == 0 ? 2 : PlySize(p.countType ? p.countType : p.type);
    if (least == 0) continue;  // no properties: nothing in the body
    if (e.count > (end - body.p) / least) {
      *error = "element " + e.name + " claims more than the file holds";
      return false;
    }
    const bool vertex = e.name == "vertex", face = e.name == "face", strips = e.name == "tristrips";
    int xyz[3] = {-1, -1, -1};
    int list = -1;
    for (size_t i = 0; i < e.properties.size(); i++) {
      const PlyProperty& p = e.properties[i];
      for (int k = 0; k < 3; k++)
        if (p.countType == kNone && p.name == std::string(1, char('x' + k))) xyz[k] = int(i);
      if (p.countType != kNone && (list < 0 || p.name == "vertex_indices" || p.name == "vertex_index"))
        list = int(i);
    }
    if (vertex) {
      if (xyz[0] < 0 || xyz[1] < 0 || xyz[2] < 0) {
        *error = "vertices without x, y and z";
        return false;
      }
      part.vertices.reserve(size_t(e.count));
      vertexCount = size_t(e.count);
    }
    if (format == 1 && vertex && FastVertices(e, xyz, &body, &part, &ticker)) continue;
    if (format == 1 && face && FastFaces(e, vertexCount, &body, &part, &ticker)) {
      if (!body.ok) {
        *error = "element " + e.name + " is damaged or cut short";
        return false;
      }
      continue;
    }
    std::vector<long long> items;
    for (long long n = 0; n < e.count && body.ok; n++) {
      ticker.Tick(body.p, part.sizes.size());
      float c[3] = {0, 0, 0};
      items.clear();
      for (size_t i = 0; i < e.properties.size() && body.ok; i++) {
        const PlyProperty& p = e.properties[i];
        if (p.countType == kNone) {
          const double v = body.Read(p.type);
          for (int k = 0; k < 3; k++)
            if (xyz[k] == int(i)) c[k] = float(v);
          continue;
        }
        const double count = body.Read(p.countType);
        if (!(count >= 0) || count > double(end - body.p) / (format == 0 ? 2 : PlySize(p.type))) {
          body.ok = false;
          break;
        }
        for (long long k = 0; k < (long long)count && body.ok; k++) {
          const double v = body.Read(p.type);
          if (int(i) == list) items.push_back((long long)v);
        }
      }
      if (vertex) part.vertices.emplace_back(c[0], c[1], c[2]);
      for (long long v : items)
        if ((face || strips) && (v < -1 || v >= (long long)vertexCount || (face && v < 0))) body.ok = false;
      if (!body.ok) break;
      if (face && items.size() >= 3) {
        for (long long v : items) part.corners.push_back(unsigned(v));
        part.sizes.push_back(unsigned(items.size()));
      } else if (strips) {
        // Every other triangle of a strip turns the other way: its first two
        // corners swap so all face the same side. -1 starts a new strip.
        size_t start = 0;
        for (size_t k = 0; k <= items.size(); k++) {
          if (k < items.size() && items[k] >= 0) continue;
          for (size_t j = start; j + 2 < k; j++) {
            const bool odd = (j - start) % 2 == 1;
            const long long a = items[odd ? j + 1 : j], b = items[odd ? j : j + 1], c2 = items[j + 2];
            part.corners.insert(part.corners.end(), {unsigned(a), unsigned(b), unsigned(c2)});
            part.sizes.push_back(3);
          }
          start = k + 1;
        }
      }
    }
    if (!body.ok) {
      *error = "element " + e.name + " is damaged or cut short";
      return false;
    }
  }
  out->parts = std::move(parts);
  return true;
}

// ---- STL ----

// The bits of a coordinate triple, so equal corners meet in a hash.
Key Bits(const Vec3& v) {
  uint32_t w[3];
  memcpy(w, &v.x, 4), memcpy(w + 1, &v.y, 4), memcpy(w + 2, &v.z, 4);
  return {w[0], w[1], w[2]};
}

float LittleFloat(const char* p) {
  const uint32_t w = uint32_t(uint8_t(p[0])) | uint32_t(uint8_t(p[1])) << 8 | uint32_t(uint8_t(p[2])) << 16 |
                     uint32_t(uint8_t(p[3])) << 24;
  float f;
  memcpy(&f, &w, 4);
  return f;
}

// Facets share corners through a hash of their coordinates. As in assimp's
// reading, the facets' own normals keep corners of facets turned otherwise
// apart, unless some facet has none: then no facet's counts, and a corner
// joins the facets around it that turn less than 80 degrees from its own.
struct StlBuilder {
  std::vector<Vec3> facets;  // a normal and three corners each
  bool allNormals = true;

  void Facet(const Vec3& normal, const Vec3* v) {
    allNormals = allNormals && normal.SquareLength() > 0 && std::isfinite(normal.SquareLength());
    facets.insert(facets.end(), {normal, v[0], v[1], v[2]});
  }

  // The bits of corner c (facet c / 3, corner c % 3) and of its facet's
  // normal: six words that say all that sets a vertex apart.
  void CornerBits(size_t c, uint32_t* w) const {
    memcpy(w, &facets[c / 3 * 4 + 1 + c % 3], 12);
    memcpy(w + 3, &facets[c / 3 * 4], 12);
  }

  // Facets that all have normals: a corner is its position and its facet's
  // normal, bit for bit. Instead of a hash table of every corner (a cache
  // miss each, and a gigabyte for millions of facets), corners are radix
  // sorted by a 64-bit digest of those bits; each run of equal bits is one
  // vertex, numbered in the order its corners first appear, as a table
  // would number them.
  void JoinSorted(Part* part) {
    struct Item {
      uint64_t digest;
      uint32_t corner;
    };
    const size_t n = facets.size() / 4 * 3;
    std::vector<Item> items(n), scratch(n);
    for (size_t c = 0; c < n; c++) {
      uint32_t w[6];
      CornerBits(c, w);
      uint64_t h = 0x9E3779B97F4A7C15ull;
      for (uint32_t word : w) h = (h ^ word) * 0xFF51AFD7ED558CCDull, h ^= h >> 32;
      items[c] = {h, uint32_t(c)};
    }
    // Six stable passes of eleven bits (buckets few enough for the cache):
    // equal digests keep corner order.
    constexpr int kBits = 11;
    constexpr uint64_t kMask = (1u << kBits) - 1;
    std::vector<size_t> count((1u << kBits) + 1);
    for (int shift = 0; shift < 64; shift += kBits) {
      std::fill(count.begin(), count.end(), 0);
      for (const Item& it : items) count[(it.digest >> shift & kMask) + 1]++;
      for (size_t d = 1; d < count.size(); d++) count[d] += count[d - 1];
      for (const Item& it : items) scratch[count[it.digest >> shift & kMask]++] = it;
      items.swap(scratch);
    }
    // The first corner of each key; a run of one digest may hold more keys.
    std::vector<uint32_t> first(n);
    for (size_t i = 0; i < n;) {
      size_t end = i + 1;
      while (end < n && items[end].digest == items[i].digest) end++;
      for (size_t j = i; j < end; j++) {
        uint32_t a[6], b[6];
        CornerBits(items[j].corner, a);
        first[items[j].corner] = items[j].corner;
        for (size_t k = i; k < j; k++) {
          CornerBits(items[k].corner, b);
          if (memcmp(a, b, sizeof a) == 0) {
            first[items[j].corner] = first[items[k].corner];
            break;
          }
        }
      }
      i = end;
    }
    std::vector<Item>().swap(items), std::vector<Item>().swap(scratch);
    part->corners.resize(n);
    for (size_t c = 0; c < n; c++) {
      if (first[c] == c) {
        part->corners[c] = unsigned(part->vertices.size());
        part->vertices.push_back(facets[c / 3 * 4 + 1 + c % 3]);
      } else {
        part->corners[c] = part->corners[first[c]];
      }
    }
  }

  void Scene(ModelParts* out) {
    std::vector<Part> parts(1);
    parts[0].sizes.assign(facets.size() / 4, 3);
    if (allNormals) {
      JoinSorted(&parts[0]);
      out->parts = std::move(parts);
      return;
    }
    Joiner joiner;
    KeyIndex positions;
    std::vector<Vec3> corners;
    parts[0].corners.reserve(facets.size() / 4 * 3);
    for (size_t f = 0; f < facets.size(); f += 4) {
      corners.assign(facets.begin() + long(f + 1), facets.begin() + long(f + 4));
      const Vec3 face = FaceNormal(corners);
      const float length = face.Length();
      for (int k = 0; k < 3; k++) {
        const Vec3& at = corners[size_t(k)];
        const long long p = positions.Find(Bits(at), unsigned(positions.size()));
        parts[0].corners.push_back(joiner.Corner(parts[0], Key{p, -1, -1}, at, Vec3(), face, length));
      }
    }
    out->parts = std::move(parts);
  }
};

bool ReadStl(std::string_view bytes, ModelParts* out, std::string* error, const ReadProgress* progress) {
  Ticker ticker{progress, bytes.data(), (long long)bytes.size()};
  StlBuilder b;
  Vec3 v[4];
  if (bytes.size() >= 84) {
    uint32_t count = 0;
    for (int i = 0; i < 4; i++) count |= uint32_t(uint8_t(bytes[80 + size_t(i)])) << (8 * i);
    if (bytes.size() == 84 + 50ull * count) {
      b.facets.reserve(4ull * count);
      for (size_t f = 0; f < count; f++) {
        const char* r = bytes.data() + 84 + 50 * f;
        ticker.Tick(r, f);
        for (int k = 0; k < 4; k++)
          v[k] = Vec3(LittleFloat(r + 12 * k), LittleFloat(r + 12 * k + 4), LittleFloat(r + 12 * k + 8));
        b.Facet(v[0], v + 1);
      }
      b.Scene(out);
      return true;
    }
  }
  Text t{bytes.data(), bytes.data() + bytes.size()};
  if (t.Token() != "solid") {
    *error = "neither a binary STL (its size does not match its facet count) nor an ASCII one";
    return false;
  }
  int corners = 0;
  long long line = 1;
  for (t.NextLine(); !t.AtEnd(); t.NextLine(), line++) {
    ticker.Tick(t.p, b.facets.size() / 4);
    const std::string_view word = t.Token();
    const bool normal = word == "facet", vertex = word == "vertex";
    if (normal && t.Token() != "normal") break;
    if (normal || vertex) {
      if (vertex && corners == 3) break;
      float c[3];
      for (float& x : c)
        if (!Number(t.Token(), &x)) {
          *error = "line " + std::to_string(line) + ": a coordinate is not a number";
          return false;
        }
      (normal ? v[0] : v[1 + corners++]) = Vec3(c[0], c[1], c[2]);
      if (normal) corners = 0;
    } else if (word == "endfacet") {
      if (corners != 3) break;
      b.Facet(v[0], v + 1);
      corners = 0;
    }
  }
  if (!t.AtEnd()) {
    *error = "line " + std::to_string(line) + ": a facet is not three vertices";
    return false;
  }
  b.Scene(out);
  return true;
}

}  // namespace

// The file, or its first limit bytes when limit is not 0. Its size, where
// it has one, is read in one go; a pipe or a file that grows is still read
// to its end.
bool ReadFile(const char* path, std::string* out, size_t limit) {
  FILE* f = fopen(path, "rb");
  if (f == nullptr) return false;
  out->clear();
  struct stat st;
  if (fstat(fileno(f), &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    out->resize(limit != 0 && size_t(st.st_size) > limit ? limit : size_t(st.st_size));
    out->resize(fread(out->data(), 1, out->size(), f));
  }
  char buffer[1 << 16];
  size_t n;
  while ((limit == 0 || out->size() < limit) && (n = fread(buffer, 1, sizeof buffer, f)) > 0)
    out->append(buffer, limit != 0 && n > limit - out->size() ? limit - out->size() : n);
  const bool ok = ferror(f) == 0;
  fclose(f);
  return ok;
}

std::string Extension(const char* path) {
  const char* dot = strrchr(path, '.');
  std::string ext = dot != nullptr && strchr(dot, '/') == nullptr ? dot + 1 : "";
  for (char& c : ext) c = char(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return ext;
}

std::string Folder(const char* path) {
  const char* slash = strrchr(path, '/');
  return slash == nullptr ? "" : std::string(path, size_t(slash - path + 1));
}

bool ReadModelParts(std::string_view bytes, const char* format, const std::string& folder, ModelParts* out,
                    std::string* error, const ReadProgress* progress) {
  *out = ModelParts();
  if (strcmp(format, "obj") == 0) return ReadObj(bytes, folder, out, error, progress);
  if (strcmp(format, "ply") == 0) return ReadPly(bytes, out, error, progress);
  if (strcmp(format, "stl") == 0) return ReadStl(bytes, out, error, progress);
  *error = "no reader of ours for this format";
  return false;
}

long long DeclaredPolygons(const char* path, bool* strips, long long* vertices) {
  *strips = false;
  *vertices = -1;
  const std::string ext = Extension(path);
  std::string bytes;
  // Headers are short: a PLY or OFF file and a binary STL are known by
  // their first megabyte and their size, and only OBJ and ASCII STL files
  // are read whole to be counted.
  struct stat st;
  if ((ext != "obj" && ext != "ply" && ext != "off" && ext != "stl") || stat(path, &st) != 0 ||
      !ReadFile(path, &bytes, ext == "obj" ? 0 : 1 << 20))
    return -1;
  if (ext == "stl" && bytes.size() >= 84) {
    uint32_t count;
    memcpy(&count, bytes.data() + 80, 4);
    if ((unsigned long long)st.st_size == 84 + 50ull * count) return count;
    if (!ReadFile(path, &bytes, 0)) return -1;
  }
  Text t{bytes.data(), bytes.data() + bytes.size()};
  if (ext == "obj") {
    long long faces = 0;
    for (; !t.AtEnd(); t.NextLine()) faces += t.Token() == "f";
    return faces;
  }
  if (ext == "ply") {
    long long faces = -1;
    for (; !t.AtEnd(); t.NextLine()) {
      const std::string_view word = t.Token();
      if (word == "end_header") break;
      if (word != "element") continue;
      const std::string_view name = t.Token();
      long long count = 0;
      if (name == "face" && Number(t.Token(), &count)) faces = count;
      if (name == "tristrips") *strips = true;
    }
    return *strips ? -1 : faces;
  }
  if (ext == "off") {
    // "OFF", then the counts (vertices, faces, edges) on the first line that is not a comment.
    for (t.NextLine(); !t.AtEnd(); t.NextLine()) {
      const std::string_view first = t.Token();
      if (first.empty() || first[0] == '#') continue;
      long long faces = -1;
      if (!Number(first, vertices)) *vertices = -1;
      return Number(t.Token(), &faces) ? faces : -1;
    }
    return -1;
  }
  // An ASCII STL: its facets counted.
  long long facets = 0;
  for (; !t.AtEnd(); t.NextLine()) facets += t.Token() == "facet";
  return facets;
}
