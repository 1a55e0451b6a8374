#pragma once

#include <QByteArray>
#include <map>

namespace bomparser::test {

/// Changes variables of the environment for as long as it lives.
class Environment {
 public:
  Environment() = default;
  ~Environment() {
    for (const auto& [name, value] : m_before) {
      Put(name.constData(), value);
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  void Set(const char* name, const QByteArray& value) {
    m_before.emplace(name, qgetenv(name));
    Put(name, value);
  }
  void Unset(const char* name) { Set(name, {}); }

 private:
  static void Put(const char* name, const QByteArray& value) {
    if (value.isNull()) {
      qunsetenv(name);
    } else {
      qputenv(name, value);
    }
  }

  std::map<QByteArray, QByteArray> m_before;
};

}  // namespace bomparser::test
