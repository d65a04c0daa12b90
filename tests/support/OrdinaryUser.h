#pragma once
// Running part of a test as an ordinary user. Permissions do not bind root,
// and CI runs as root: a test of what a read-only folder refuses runs its body
// through RunAsOrdinaryUser, which under root hands `folder` (recursively) to
// the user "nobody" and runs the body in a child process that has dropped its
// privileges for good. The body's GoogleTest failures are printed by the child
// and make the calling test fail. Without root the body simply runs here.

#include <functional>
#include <string>

namespace twtest {

void RunAsOrdinaryUser(const std::string& folder, const std::function<void()>& body);

}  // namespace twtest
