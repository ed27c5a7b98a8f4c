// What the value classes (colour, font, the boxed values, the geometry
// classes) share: a native state behind data word 0 of their own level, and
// the descriptor items of the methods they all offer alike.
#pragma once

#include <cstddef>
#include <new>

#include <zel/class_table.h>
#include <zel/errors.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/mstring.h>
#include <zel/no_memory.h>
#include <zel/textfuncs.h>

namespace zel {

// The state a class keeps behind its data word 0.
template <typename State>
State* StateOf(ZelObject* obj) {
    return static_cast<State*>(GetDataItemData(obj, 1, 0));
}
// Without memory there is no state: every method then answers with its neutral result.
template <typename State>
void NewState(ZelObject* obj) {
    SetDataItemData(obj, 1, 0, NewOrNull<State>());
}
template <typename State>
void DeleteState(ZelObject* obj) {
    delete StateOf<State>(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// A state that is one value in a cell of its own. A fresh cell reads 0
// rather than leftover memory; without a cell (no memory) it reads 0 too.
template <typename T>
void NewCell(ZelObject* obj) {
    SetDataItemData(obj, 1, 0, NewOrNull<T>());
}
template <typename T>
T CellValue(ZelObject* obj) {
    T* cell = StateOf<T>(obj);
    return cell ? *cell : T{};
}
template <typename T>
void SetCellValue(ZelObject* obj, T value) {
    if (T* cell = StateOf<T>(obj)) *cell = value;
}

// One field of the state as a property. Without a state the getter gives
// `Missing` and the setter does nothing; the setter converts to the field's
// type (a byte keeps the low 8 bits).
template <typename>
struct FieldOf;
template <typename State, typename T>
struct FieldOf<T State::*> {
    using Owner = State;
    using Type = T;
};
template <auto Field, auto Missing = typename FieldOf<decltype(Field)>::Type{}>
auto GetField(ZelObject* obj) {
    using F = FieldOf<decltype(Field)>;
    auto* s = StateOf<typename F::Owner>(obj);
    return s ? s->*Field : typename F::Type(Missing);
}
template <auto Field, typename Value>
void SetField(ZelObject* obj, Value value) {
    using F = FieldOf<decltype(Field)>;
    if (auto* s = StateOf<typename F::Owner>(obj)) s->*Field = typename F::Type(value);
}

// The 到文本 of a few numbers, e.g. L"%d, %d".
template <typename... Numbers>
unsigned char* NumbersText(const wchar_t* format, Numbers... numbers) {
    wchar_t buf[64] = {};
    swprintf_linux(buf, W(format), numbers...);
    return NewText(buf);
}

// The 到对象 of the same: the comma-separated items of the text, blanks
// trimmed, go to the fields in order; a field without an item keeps its value.
template <typename T, std::size_t N>
void ReadNumberItems(unsigned char* text, T* const (&fields)[N]) {
    CMStringArray items;
    int n = GetStringList(TextChars(text), items);
    for (int i = 0; i < n && i < int(N); ++i) *fields[i] = T(myatoi(items[i]));
    items.RemoveAll();  // the array leaves its texts to us
}


// The other object of 比较 and 相等, of the class's own type.
inline tagParamItem OtherParam(const wchar_t* type) {
    return Param(L"欲比较的对象", type, L"本参数提供欲与当前对象进行比较的对象");
}

template <typename Fn>
tagMethodItem ToTextMethod(Fn fn) {
    return Method(L"到文本", L"_s", fn, L"返回以文本方式表达的对象当前内容");
}
template <typename Fn>
tagMethodItem CompareMethod(tagParamItem (&other)[1], Fn fn) {
    return Method(L"比较", L"_i", other, fn, L"确定两个对象谁大谁小");
}

}  // namespace zel
