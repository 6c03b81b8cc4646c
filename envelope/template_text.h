// Inside the envelope: splitting a template's text into literal runs and
// placeholders. Shared by the filling and by the listing of the box map.
#pragma once

#include <string_view>
#include <vector>

#include "envelope/envelope.h"

struct TemplatePiece {
    std::string_view text;  // the literal run, or the whole "{...}" of a placeholder
    bool placeholder = false;
    Placeholder parsed;     // when placeholder
};

// Literal runs and placeholders in order. Braces whose content is no
// placeholder (or a "{" never closed) stay literal text; each such "{...}"
// is added to bad when given.
std::vector<TemplatePiece> SplitTemplateText(std::string_view text, std::vector<std::string_view>* bad = nullptr);

// The same pieces as SplitTemplateText, parsed once for each distinct text.
// The result refers either to a remembered parse or to scratch; its views
// point into the remembered copy or into text respectively.
const std::vector<TemplatePiece>& TemplatePieces(std::string_view text, std::vector<TemplatePiece>& scratch);

// True when the text holds at least one placeholder.
bool HasPlaceholder(std::string_view text);

// The mark-up attributes of a template, which never reach a document.
inline constexpr const char* kIfAttr = "if";
inline constexpr const char* kRepeatAttr = "repeat";
inline constexpr const char* kFilled = "filled";
// Stands in a box key for the row number inside a repeat.
inline constexpr char kRowMark = '#';
