// ClassObjects: classes of the test's own that anyone in this process can create by ProgID, for as long as it
// lives.
#pragma once

#include <functional>
#include <vector>

#include "tests/windows/fakes/scripted.h"

namespace quillfile::windows {

class ClassObjects {
 public:
  ClassObjects() = default;
  ClassObjects(const ClassObjects&) = delete;
  ClassObjects& operator=(const ClassObjects&) = delete;
  ~ClassObjects();

  // `create` is called for each new object.
  void offer(const Text& progId, std::function<Fake()> create);
  void withdraw(const Text& progId);

 private:
  struct Offered {
    Text progId;
    CLSID classId;
    DWORD cookie;
  };
  static void revoke(const Offered& offered);
  std::vector<Offered> offered_;
};

}  // namespace quillfile::windows
