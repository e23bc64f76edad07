#pragma once

#include "collections/fake_managed.h"
#include "python_fixture.h"

// The collection wrappers in an embedded interpreter, over the managed side of fake_managed.h. `__main__`
// gets:
//
//   interop, generic       the two modules
//   make(type, items)      a wrapper of a new managed collection
//   node(n), vector(n), unit(n)   wrappers of a managed class, struct and interface
//   calls()                the managed calls since the last time, as texts
//   fail(name, after=0)    makes an entry point fail once
//   living()               the handles that nobody freed
//   setting(name, value)   a field of fake::State
//   convert(name, object)  runs an argument converter: (kind, "null", "object" or "handle")
//   bound()                the look-ups of managed methods so far
//   raises(type, text, function, *arguments)   asserts an exception and its text

class Collections : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    int m_living = 0;
};
