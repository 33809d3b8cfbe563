#!/bin/bash
# refusals.sh <compiler> <folder> <folder> <include folder>...: what is wrong does not compile, and
# the compiler's first error says what to do; the same without the fault compiles.
set -euo pipefail
compiler=$1 includes=("${@:4}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
cat >prelude.h <<'END'
#include <lyr/kit.h>
#define ID(n) "d0000000-0000-4000-8000-00000000000" #n
struct IA : IUnknown { LYR_INTERFACE(IA, ID(1)); virtual void A() = 0; };
struct IB : IUnknown { LYR_INTERFACE(IB, ID(2)); virtual void B() = 0; };
struct IA1 : IA { LYR_INTERFACE(IA1, ID(3)); virtual void A1() = 0; };
struct IA2 : IA { LYR_INTERFACE(IA2, ID(4)); virtual void A2() = 0; };
struct INoId : IA { virtual void None() = 0; };
#define BODY_A { void A() override {} }
END
# What all of it costs most is the headers.
"$compiler" -std=c++17 -fvisibility=hidden -Werror "${includes[@]/#/-I}" -x c++-header prelude.h
cases=0 failures=0

# refuse <words of the first error, as a regular expression> <faulty> <sound> [<flag>...]
refuse() {
    local compile=("$compiler" -std=c++17 -fvisibility=hidden -Werror "${includes[@]/#/-I}"
        -include prelude.h "${@:4}" -c -o /dev/null)
    ((++cases))
    echo "$3" >sound.cpp
    "${compile[@]}" sound.cpp || { echo "refused: $3"; ((++failures)); }
    echo "$2" >faulty.cpp
    if "${compile[@]}" faulty.cpp 2>errors; then
        echo "compiled: $2"
        ((++failures))
    elif ! grep -m1 -E '(error|Error)' errors | grep -qE "$1"; then
        echo "expected $1: $2" && grep -m1 error errors
        ((++failures))
    fi
}
# also <words>: among the lines behind that first error. None of <words>: nowhere there.
also() {
    grep -qE "$1" errors || { echo "expected behind the first error: $1" && cat errors; ((++failures)); }
}
never() {
    ! grep -E "$1" errors || ((++failures))
}
# once: the sentence is the only one of ours.
once() {
    [[ $(grep -c ' error: .*lyr: ' errors) == 1 ]] || { echo "one cause, several sentences" && ((++failures)); }
}

interface() { echo "struct IX : IUnknown { LYR_INTERFACE($1, \"$2\"); };"; }
id=d0000000-0000-4000-8000-000000000009
refuse 'lyr: this is no id; an id looks like' "$(interface IX d0000000-0000-4000-8000)" "$(interface IX $id)"
refuse 'lyr: this is no id' "$(interface IX "{$id}")" "$(interface IX $id)"
refuse 'lyr: this is no id' "$(interface IX ${id/d/g})" "$(interface IX $id)"
refuse 'lyr: LYR_INTERFACE names another class' "$(interface IA $id)" "$(interface IX $id)"
refuse 'lyr: this is no class id' \
    'LYR_COMPONENT(C, LYR_CLASS_ID("1"), IA) BODY_A;' 'LYR_COMPONENT(C, LYR_CLASS_ID(ID(5)), IA) BODY_A;'

# Lists of interfaces.
refuse 'lyr: .*has no id of its own' 'LYR_COMPONENT(C, INoId) { void A() override {} void None() override {} };' \
    'LYR_COMPONENT(C, IA) BODY_A;'
refuse 'lyr: what is listed here is no interface' \
    'struct S {}; LYR_COMPONENT(C, IA, S) BODY_A;' 'struct S {}; LYR_COMPONENT(C, IA) BODY_A;'
refuse 'lyr: an interface is listed twice' 'LYR_COMPONENT(C, IA, IB, IA) BODY_A;' \
    'LYR_COMPONENT(C, IA, IB) { void A() override {} void B() override {} };'
refuse 'lyr: an interface is listed beside one that derives from it' \
    'LYR_COMPONENT(C, IA, IA1) { void A() override {} void A1() override {} };' \
    'LYR_COMPONENT(C, IA1) { void A() override {} void A1() override {} };'
two='{ void A() override {} void A1() override {} void A2() override {} };'
refuse 'lyr: two of the listed interfaces derive from one base' "LYR_COMPONENT(C, IA1, IA2) $two" \
    'LYR_COMPONENT(C, IA1) { void A() override {} void A1() override {} void A2() {} };
    LYR_TIE(T, C, IA2, lyr::Without<IA>) { void A() override {} void A2() override { Object().A2(); } };'
refuse 'lyr: the base component answers' \
    "LYR_COMPONENT(Base, IA) BODY_A; LYR_COMPONENT(C, lyr::From<Base>, IA1) { void A() override {} void A1() override {} };" \
    "LYR_COMPONENT(Base, IA) BODY_A; LYR_COMPONENT(C, lyr::From<Base>, IB) { void B() override {} };"
base='LYR_KEPT_EXTENSION(X, (Y), IB) { void B() override {} }; LYR_COMPONENT(Base, IB) { void B() override {} };'
refuse 'lyr: lyr::From names the base component' "$base LYR_COMPONENT(C, lyr::From<X>, IA) BODY_A;" \
    "$base LYR_COMPONENT(C, lyr::From<Base>, IA) BODY_A;"
refuse 'lyr: lyr::From names the base component' "struct S {}; LYR_COMPONENT(C, lyr::From<S>, IA) BODY_A;" \
    "$base LYR_COMPONENT(C, lyr::From<Base>, IA) BODY_A;"
refuse 'lyr: the base component says whether' "$base LYR_COMPONENT(C, lyr::OneThread, lyr::From<Base>, IA) BODY_A;" \
    "$base LYR_COMPONENT(C, lyr::From<Base>, lyr::Inner, IA) BODY_A;"
refuse 'lyr: the class lists no interface' 'LYR_COMPONENT(C) {};' 'LYR_COMPONENT(C, lyr::TiesOnly) {};'
many=$(for n in {1000..1128}; do
    echo "struct I$n : IUnknown { LYR_INTERFACE(I$n, \"d0000000-0000-4000-8000-00000000$n\"); };"
done)
few=$(printf 'I%d, ' {1001..1128})
refuse 'lyr: a class lists at most 128' "$many LYR_COMPONENT(C, $few I1000) {};" "$many LYR_COMPONENT(C, ${few%, }) {};"
refuse 'lyr: a class answers at most 128' "$many LYR_COMPONENT(C, ${few/I1001,/} IA1) { void A() override {} void A1() override {} };" \
    "$many LYR_COMPONENT(C, ${few/I1001,/} IA) BODY_A;"
refuse 'lyr: a listed interface derives from two others' \
    "struct IX : IA, IB { LYR_INTERFACE(IX, \"$id\"); }; LYR_COMPONENT(C, IX) { void A() override {} void B() override {} };" \
    'LYR_COMPONENT(C, IA, IB) { void A() override {} void B() override {} };'
refuse 'lyr: this interface derives from two others' \
    "struct IX : IA, IB { LYR_INTERFACE(IX, \"$id\"); }; IID F() { return lyr::IdOf<IX>(); }" \
    "struct IX : IA { LYR_INTERFACE(IX, \"$id\"); }; IID F() { return lyr::IdOf<IX>(); }"
refuse 'lyr: a class has one base component' "$base LYR_COMPONENT(Two, lyr::TiesOnly) {}; LYR_COMPONENT(C, lyr::From<Base>, lyr::From<Two>, IA) BODY_A;" \
    "$base LYR_COMPONENT(Two, lyr::TiesOnly) {}; LYR_COMPONENT(C, lyr::From<Base>, IA) BODY_A;"
refuse 'lyr: a class has one id' 'LYR_COMPONENT(C, IA, LYR_CLASS_ID(ID(5)), LYR_CLASS_ID(ID(6))) BODY_A;' \
    'LYR_COMPONENT(C, IA, LYR_CLASS_ID(ID(5))) BODY_A;'
refuse 'lyr: the class does not implement every operation' 'LYR_COMPONENT(C, IA, IB) {};' \
    'LYR_COMPONENT(C, IA, IB) { void A() override {} void B() override {} };'
# One cause is told once, and by name.
also "note: .*'A'|IA::A\\(\\)"
never 'made without arguments'
once
refuse 'lyr: the class does not implement every operation' 'LYR_KEPT_EXTENSION(E, (C), IA) {};' \
    'LYR_KEPT_EXTENSION(E, (C), IA) BODY_A;'
refuse 'lyr: the class does not implement every operation' 'LYR_COMPONENT(C, lyr::TiesOnly) {}; LYR_TIE(T, C, IA) {};' \
    'LYR_COMPONENT(C, lyr::TiesOnly) {}; LYR_TIE(T, C, IA) BODY_A;'

# Kinds.
refuse 'lyr: an extension names the classes that it extends' 'LYR_KEPT_EXTENSION(E, IA) BODY_A;' \
    'LYR_KEPT_EXTENSION(E, (C), IA) BODY_A;'
refuse 'lyr: an extension names the classes that it extends' 'LYR_TRANSIENT_EXTENSION(E, (), IA) BODY_A;' \
    'LYR_TRANSIENT_EXTENSION(E, (C, D), IA) BODY_A;'
refuse 'lyr: classes in parentheses are those that an extension extends' \
    'struct D; LYR_COMPONENT(C, (D), IA) BODY_A;' 'LYR_COMPONENT(C, IA) BODY_A;'
refuse 'lyr: an extension has no class id' 'LYR_KEPT_EXTENSION(E, (C), IA, LYR_CLASS_ID(ID(5))) BODY_A;' \
    'LYR_KEPT_EXTENSION(E, (C), IA) BODY_A;'
kept='LYR_KEPT_EXTENSION(E, (C, D), IA) BODY_A;'
refuse 'lyr: an extension names one of its extended classes twice' "${kept/C, D/C, CC, C}" "${kept/C, D/C, CC, C_}"
refuse 'lyr: an extension extends itself' "${kept/C, D/C, E}" "${kept/C, D/EE, E1}"
refuse 'lyr: an option is listed twice' 'LYR_COMPONENT(C, lyr::OneThread, IA, lyr::OneThread) BODY_A;' \
    'LYR_COMPONENT(C, lyr::OneThread, IA, lyr::Inner) BODY_A;'
refuse 'lyr: a class id is for objects that others make' \
    'LYR_COMPONENT(C, lyr::Inner, LYR_CLASS_ID(ID(5)), IA) BODY_A;' 'LYR_COMPONENT(C, lyr::Inner, IA) BODY_A;'
declared='LYR_DECLARE_COMPONENT(C, IA) BODY_A; struct S : C {}; LYR_DEFINE_COMPONENT(C);'
for faulty in 'struct C;' 'struct C : IA BODY_A;' 'LYR_COMPONENT(C, IA) BODY_A;' 'LYR_KEPT_EXTENSION(C, (D), IA) BODY_A;'; do
    refuse 'lyr: LYR_DEFINE_COMPONENT is for' "$faulty LYR_DEFINE_COMPONENT(C);" "$declared"
done
refuse 'lyr: LYR_DEFINE_COMPONENT is for' "${declared/%C);/S);}" "$declared"
once
refuse 'lyr: a component is no class template' 'template <class T> LYR_COMPONENT(C, IA) BODY_A;' \
    'LYR_COMPONENT(C, IA) BODY_A;'
refuse 'lyr: a TIE is for a class' 'struct C {}; LYR_TIE(T, C, IA) BODY_A;' \
    'LYR_COMPONENT(C, IB) { void B() override {} }; LYR_TIE(T, C, IA) BODY_A;'
refuse 'lyr: a TIE gives one interface' 'LYR_COMPONENT(C, lyr::TiesOnly) {}; LYR_TIE(T, C) {};' \
    'LYR_COMPONENT(C, lyr::TiesOnly) {}; LYR_TIE(T, C, IA) BODY_A;'
refuse 'lyr: the class has another name' 'LYR_NAMED_COMPONENT(C, D, lyr::TiesOnly) {}; LYR_TIE(T, C, IA) BODY_A;' \
    'LYR_NAMED_COMPONENT(C, D, lyr::TiesOnly) {}; LYR_NAMED_TIE(T, C, D, IA) BODY_A;'
ties='LYR_COMPONENT(C, lyr::TiesOnly) {};'
refuse 'lyr: lyr::TiesOnly is for a class that lists no interface' 'LYR_COMPONENT(C, lyr::TiesOnly, IA) BODY_A;' \
    'LYR_COMPONENT(C, IA) BODY_A;'
refuse 'lyr: lyr::Without is for a TIE' 'LYR_COMPONENT(C, IA, lyr::Without<IB>) BODY_A;' 'LYR_COMPONENT(C, IA) BODY_A;'
refuse 'lyr: an extension is made by requests alone' 'LYR_KEPT_EXTENSION(E, (C), IA, lyr::Inner) BODY_A;' \
    'LYR_KEPT_EXTENSION(E, (C), IA) BODY_A;'
refuse 'lyr: this option is for the class behind the TIE' "$ties LYR_TIE(T, C, IA, lyr::OneThread) BODY_A;" \
    "$ties LYR_TIE(T, C, IA) BODY_A;"
refuse 'lyr: lyr::Without names an interface that' "$ties LYR_TIE(T, C, IA, lyr::Without<IB>) BODY_A;" \
    "$ties LYR_TIE(T, C, IA) BODY_A;"
refuse 'lyr: lyr::Without names an interface twice' \
    "$ties LYR_TIE(T, C, IA1, lyr::Without<IA>, lyr::Without<IA>) { void A() override {} void A1() override {} };" \
    "$ties LYR_TIE(T, C, IA1, lyr::Without<IA>) { void A() override {} void A1() override {} };"
refuse 'lyr: an extension is made by the request for' \
    'LYR_KEPT_EXTENSION(E, (C), IA) BODY_A; void F() { auto e = lyr::Make<E>(); }' \
    'LYR_COMPONENT(E, IA) BODY_A; void F() { auto e = lyr::Make<E>(); }'
refuse 'lyr: objects that are made by name are made without arguments' \
    'LYR_COMPONENT(C, IA) { void A() override {} private: C() = default; };' \
    'LYR_COMPONENT(C, IA) { void A() override {} private: friend lyr::Making; C() = default; };'
refuse 'lyr: objects that are made by name are made without arguments' \
    'LYR_COMPONENT(C, IA) { void A() override {} explicit C(int) {} };' \
    'LYR_COMPONENT(C, lyr::Inner, IA) { void A() override {} explicit C(int) {} };
    void F() { auto c = lyr::Make<C>(1); }'

# Objects and references.
object='LYR_COMPONENT(C, IA) BODY_A; void F() {'
# Of an abstract class and of a protected member the language has compilers speak first, whatever is
# declared; what they name says what to do.
refuse abstract "$object C c; }" "$object auto c = lyr::Make<C>(); }"
also ObjectsAreMadeByLyrMakeOrLyrCreate
refuse abstract "$object auto* c = new C; }" "$object auto c = lyr::Make<C>(); }"
also ObjectsAreMadeByLyrMakeOrLyrCreate
refuse 'operator delete.* protected .*GivenBackByRelease|GivenBackByRelease<.*operator delete.* protected' \
    'LYR_COMPONENT(C, IA) BODY_A; void F(C* c) { delete c; }' 'LYR_COMPONENT(C, IA) BODY_A; void F(C* c) { c->Release(); }'
refuse 'protected|non-virtual' 'void F(IA* a) { delete a; }' 'void F(IA* a) { a->Release(); }'
refuse 'lyr: a plain pointer is no Ref' 'lyr::Ref<IA> F(IA* a) { return a; }' 'lyr::Ref<IA> F(IA* a) { return lyr::Share(a); }'
refuse 'lyr: a plain pointer is no Ref' 'void F(IA1* a) { lyr::Ref<IA> r(a); }' 'void F(IA1* a) { lyr::Ref<IA> r(lyr::Take(a)); }'
refuse 'lyr: a plain pointer is no Ref' 'void F(lyr::Ref<IA> r, IA* a) { r = a; }' 'void F(lyr::Ref<IA> r) { r = nullptr; }'
refuse 'lyr: a plain pointer is no Ref' 'void G(lyr::Ref<IA>); void F(IA* a) { G(a); }' \
    'void G(lyr::Ref<IA>); void G(IA*); void F(IA* a) { G(a); }'
refuse "conver|viable|no matching" 'lyr::Ref<IA> F(IB* b) { return b; }' 'lyr::Ref<IA> F() { return {}; }'
refuse 'conver' 'IA* F(const lyr::Ref<IA>& a) { return a; }' 'IA* F(const lyr::Ref<IA>& a) { return a.Get(); }'
refuse 'conver' 'lyr::Ref<IB> F(lyr::Ref<IA> a) { return a.TryAs<IA>(); }' \
    'lyr::Ref<IB> F(lyr::Ref<IA> a) { return a.TryAs<IB>(); }'
refuse 'conver' 'lyr::Ref<IA1> F(lyr::Ref<IA> a) { return a; }' 'lyr::Ref<IA> F(lyr::Ref<IA1> a) { return a; }'
refuse 'operator==|invalid operands|comparison' 'bool F(lyr::Ref<IA> a, lyr::Ref<IB> b) { return a == b; }' \
    'bool F(lyr::Ref<IA> a, lyr::Ref<IA1> b) { return a == b; }'
refuse 'lyr: this interface has no id of its own' 'auto F(IA* a) { return lyr::TryAs<INoId>(a); }' \
    'auto F(IA* a) { return lyr::TryAs<IB>(a); }'
refuse 'lyr: this interface has no id of its own' 'auto F() { return lyr::TryCreate<INoId>(lyr::IdOf<IA>()); }' \
    'auto F() { return lyr::TryCreate<IA>(lyr::IdOf<IA>()); }'
refuse 'unused-result|nodiscard' 'void F(lyr::Ref<IA> a) { a.Detach(); }' 'void F(lyr::Ref<IA> a) { a.Detach()->Release(); }'
if "$compiler" --version | grep -q clang; then
    refuse 'dangling' 'IA* F() { IA* a = lyr::TryCreate<IA>("C").Get(); return a; }' \
        'lyr::Ref<IA> F() { auto a = lyr::TryCreate<IA>("C"); return a; }'
fi
"$compiler" -std=c++17 -fvisibility=hidden -Werror -fno-exceptions "${includes[@]/#/-I}" -x c++-header prelude.h
refuse 'lyr: this throws, and exceptions are switched off' 'auto F() { return lyr::Create<IA>("C"); }' \
    'auto F() { return lyr::TryCreate<IA>("C"); }' -fno-exceptions
refuse 'lyr: this throws, and exceptions are switched off' 'auto F(lyr::Ref<IA> a) { return a.As<IB>(); }' \
    'auto F(lyr::Ref<IA> a) { return a.TryAs<IB>(); }' -fno-exceptions

echo "$failures of $cases fail"
exit $((failures != 0))
