// Lets one test program hold several Qt Test classes: each registers itself, main() runs them all.
#pragma once

#include <QObject>
#include <QTest>

#include <functional>
#include <memory>
#include <vector>

namespace vt::test {

using Factory = std::function<std::unique_ptr<QObject>()>;

std::vector<Factory>& factories();

struct Registration
{
    explicit Registration(Factory factory) { factories().push_back(std::move(factory)); }
};

} // namespace vt::test

#define VT_TEST_CLASS(Class)                                                                       \
    static const vt::test::Registration registration##Class(                                       \
        [] { return std::unique_ptr<QObject>(new Class); });
