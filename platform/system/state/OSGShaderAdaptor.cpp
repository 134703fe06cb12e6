/// \file
/// A scan of a GLSL text for its directives and words, and the rules that rewrite it.

#include "OSGShaderAdaptor.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

OSG_USING_NAMESPACE

namespace
{

/// A line that starts with #. Positions are byte offsets into the text.
struct Directive
{
    std::size_t begin;     ///< the #
    std::size_t end;       ///< one past the last character, ahead of the line end
    std::string name;      ///< "version", "extension", ...
    std::size_t argument;  ///< the first character behind the name that is no blank, or end
    bool conditional;      ///< stands between an #if and its #endif
    bool behindDirectives; ///< another directive stands ahead of it
    bool behindCode;       ///< code stands ahead of it
};

/// A run of letters, digits and underscores, or one other character, outside comments and directives.
struct Token
{
    std::size_t begin;
    std::string_view text;
};

/// What the rules need to know of a text.
struct Scan
{
    std::string code; ///< the text with comments blanked out, of the same length
    std::vector<Directive> directives;
    std::vector<Token> tokens; ///< views into code
};

bool isWordCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

bool isBlank(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

/// The first line end at or behind from that no backslash takes back, or the text's end.
std::size_t endOfLine(const std::string &text, std::size_t from)
{
    for (std::size_t end = text.find('\n', from); end != std::string::npos; end = text.find('\n', end + 1))
    {
        std::size_t last = end;
        last -= last > from && text[last - 1] == '\r' ? 1 : 0;
        if (last == from || text[last - 1] != '\\')
        {
            return end;
        }
    }
    return text.size();
}

/// The text with each comment turned into as many blanks; a line end inside a comment becomes a vertical tab,
/// so that a line end of the result is one for the language too. A comment that is never closed reaches to
/// the end.
std::string blankComments(const std::string &text)
{
    std::string code = text;
    for (std::size_t i = 0; i + 1 < text.size();)
    {
        if (text[i] != '/' || (text[i + 1] != '/' && text[i + 1] != '*'))
        {
            ++i;
            continue;
        }
        std::size_t end = text.size();
        if (text[i + 1] == '/')
        {
            end = endOfLine(text, i);
        }
        else if (const std::size_t close = text.find("*/", i + 2); close != std::string::npos)
        {
            end = close + 2;
        }
        for (; i < end; ++i)
        {
            code[i] = text[i] == '\n' ? '\v' : ' ';
        }
    }
    return code;
}

Directive readDirective(const std::string &code, std::size_t begin)
{
    Directive directive = {begin, endOfLine(code, begin), "", 0, false, false, false};
    directive.end -= code[directive.end - 1] == '\r' ? 1 : 0;
    std::size_t at = begin + 1;
    while (at < directive.end && isBlank(code[at]))
    {
        ++at;
    }
    while (at < directive.end && isWordCharacter(code[at]))
    {
        directive.name += code[at++];
    }
    while (at < directive.end && isBlank(code[at]))
    {
        ++at;
    }
    directive.argument = at;
    return directive;
}

void scanText(const std::string &text, Scan &scan)
{
    scan.code = blankComments(text);
    const std::string &code = scan.code;
    int depth = 0;
    bool lineStart = true;
    for (std::size_t i = 0; i < code.size();)
    {
        if (isBlank(code[i]))
        {
            lineStart = lineStart || code[i] == '\n';
            ++i;
            continue;
        }
        if (code[i] == '#' && lineStart)
        {
            Directive directive = readDirective(code, i);
            directive.behindDirectives = !scan.directives.empty();
            directive.behindCode = !scan.tokens.empty();
            depth -= directive.name == "endif" && depth > 0 ? 1 : 0;
            directive.conditional = depth > 0;
            depth +=
                directive.name == "if" || directive.name == "ifdef" || directive.name == "ifndef" ? 1 : 0;
            i = directive.end;
            scan.directives.push_back(std::move(directive));
            continue;
        }
        std::size_t end = i + 1;
        if (isWordCharacter(code[i]))
        {
            while (end < code.size() && isWordCharacter(code[end]))
            {
                ++end;
            }
        }
        scan.tokens.push_back({i, std::string_view(code).substr(i, end - i)});
        lineStart = false;
        i = end;
    }
}

bool isSamplerType(std::string_view word)
{
    if (!word.empty() && (word[0] == 'i' || word[0] == 'u'))
    {
        word.remove_prefix(1);
    }
    static const char *const types[] = {"sampler1D",
                                        "sampler2D",
                                        "sampler3D",
                                        "samplerCube",
                                        "sampler1DShadow",
                                        "sampler2DShadow",
                                        "samplerCubeShadow",
                                        "sampler2DRect",
                                        "sampler2DRectShadow",
                                        "sampler1DArray",
                                        "sampler2DArray",
                                        "sampler1DArrayShadow",
                                        "sampler2DArrayShadow",
                                        "samplerBuffer",
                                        "sampler2DMS",
                                        "sampler2DMSArray",
                                        "samplerCubeArray",
                                        "samplerCubeArrayShadow"};
    return std::any_of(std::begin(types), std::end(types), [word](const char *type) { return word == type; });
}

bool isPrecision(std::string_view word)
{
    return word == "lowp" || word == "mediump" || word == "highp";
}

/// Whether the word is a texture function that fragment texts below 1.30 only have through
/// GL_ARB_shader_texture_lod.
bool isLodFunction(std::string_view word)
{
    static const char *const functions[] = {"texture1DLod",         "texture1DProjLod",
                                            "texture2DLod",         "texture2DProjLod",
                                            "texture3DLod",         "texture3DProjLod",
                                            "textureCubeLod",       "shadow1DLod",
                                            "shadow1DProjLod",      "shadow2DLod",
                                            "shadow2DProjLod",      "texture1DGradARB",
                                            "texture1DProjGradARB", "texture2DGradARB",
                                            "texture2DProjGradARB", "texture3DGradARB",
                                            "texture3DProjGradARB", "textureCubeGradARB",
                                            "shadow1DGradARB",      "shadow1DProjGradARB",
                                            "shadow2DGradARB",      "shadow2DProjGradARB",
                                            "texture2DRectGradARB", "texture2DRectProjGradARB",
                                            "shadow2DRectGradARB",  "shadow2DRectProjGradARB"};
    return std::any_of(std::begin(functions), std::end(functions),
                       [word](const char *name) { return word == name; });
}

/// The number of a #version directive, 0 if it has none.
int versionOf(const Scan &scan, const Directive &directive)
{
    int number = 0;
    for (std::size_t at = directive.argument; at < directive.end && number < 100000; ++at)
    {
        if (!std::isdigit(static_cast<unsigned char>(scan.code[at])))
        {
            break;
        }
        number = 10 * number + (scan.code[at] - '0');
    }
    return number;
}

/// The #version directive that counts: the one with the highest number, the first of equals; null if there is
/// none.
const Directive *versionDirective(const Scan &scan)
{
    const Directive *best = nullptr;
    for (const Directive &directive : scan.directives)
    {
        if (directive.name == "version" &&
            (best == nullptr || versionOf(scan, directive) > versionOf(scan, *best)))
        {
            best = &directive;
        }
    }
    return best;
}

bool namesExtension(const Scan &scan, const Directive &directive, const char *extension)
{
    const std::size_t length = std::strlen(extension);
    return directive.name == "extension" && scan.code.compare(directive.argument, length, extension) == 0 &&
           (directive.argument + length >= scan.code.size() ||
            !isWordCharacter(scan.code[directive.argument + length]));
}

/// One replacement of a stretch of the text.
struct Edit
{
    std::size_t begin;
    std::size_t length;
    std::string text;
};

/// The places at which a global declaration of a sampler lacks "uniform". A word that stands where a global
/// statement may start opens a declaration; qualifiers of the precision may stand ahead of the type.
std::vector<std::size_t> bareSamplers(const Scan &scan)
{
    std::vector<std::size_t> places;
    int depth = 0;
    bool statementStart = true;
    for (std::size_t i = 0; i < scan.tokens.size(); ++i)
    {
        const std::string_view word = scan.tokens[i].text;
        if (word == "{" || word == "(" || word == "[")
        {
            ++depth;
        }
        else if (word == "}" || word == ")" || word == "]")
        {
            depth -= depth > 0 ? 1 : 0;
        }
        else if (depth == 0 && statementStart)
        {
            const std::size_t type = isPrecision(word) ? i + 1 : i;
            const bool declares = type + 2 < scan.tokens.size() && isSamplerType(scan.tokens[type].text) &&
                                  isWordCharacter(scan.tokens[type + 1].text[0]) &&
                                  scan.tokens[type + 2].text != "(";
            if (declares)
            {
                places.push_back(scan.tokens[i].begin);
            }
        }
        statementStart = depth == 0 && (word == ";" || word == "}");
    }
    return places;
}

int linesAhead(const std::string &text, std::size_t position)
{
    return static_cast<int>(
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
}

/// Applies the edits; of edits at one place the earlier of the list stands first.
std::string applyEdits(const std::string &text, std::vector<Edit> edits)
{
    std::stable_sort(edits.begin(), edits.end(),
                     [](const Edit &a, const Edit &b) { return a.begin < b.begin; });
    std::string result;
    std::size_t at = 0;
    for (const Edit &edit : edits)
    {
        result.append(text, at, edit.begin - at);
        result += edit.text;
        at = edit.begin + edit.length;
    }
    result.append(text, at, std::string::npos);
    return result;
}

/// A directive's text on one line, for use elsewhere.
std::string directiveText(const Scan &scan, const Directive &directive)
{
    std::string text = scan.code.substr(directive.begin, directive.end - directive.begin);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\\' || isBlank(c); }, ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/// An edit that takes a directive away and leaves its line ends and comments.
Edit removal(const std::string &text, const Scan &scan, const Directive &directive)
{
    std::string rest;
    for (std::size_t i = directive.begin; i < directive.end; ++i)
    {
        const bool comment = scan.code[i] != text[i];
        rest += comment || isBlank(text[i]) ? text[i] : ' ';
    }
    return {directive.begin, directive.end - directive.begin, rest};
}

} // namespace

std::string osg::adaptShader(const std::string &text, ShaderStage stage,
                             const ShaderCapabilities &capabilities, std::vector<std::string> *appliedRules)
{
    if (!capabilities.strict)
    {
        return text;
    }
    Scan scan;
    scanText(text, scan);

    std::vector<Edit> edits;
    std::vector<std::string> rules;
    std::string front; // whole lines to be inserted behind the #version line, or at the start of the text

    // version-first: the directive may stay where it is if it is the only one and only blanks and comments
    // stand ahead.
    const Directive *version = versionDirective(scan);
    int number = version != nullptr ? versionOf(scan, *version) : 110;
    bool versionStays = version != nullptr;
    std::string versionText;
    for (const Directive &directive : scan.directives)
    {
        if (directive.name == "version" &&
            (&directive != version || directive.behindDirectives || directive.behindCode))
        {
            versionStays = false;
        }
    }
    if (version != nullptr && !versionStays)
    {
        for (const Directive &directive : scan.directives)
        {
            if (directive.name == "version")
            {
                edits.push_back(removal(text, scan, directive));
            }
        }
        versionText = directiveText(scan, *version);
        rules.emplace_back("version-first");
    }

    // raise-version
    if (capabilities.raiseVersion && number == 110)
    {
        number = 120;
        if (versionStays)
        {
            edits.push_back({version->argument, 3, "120"});
        }
        else
        {
            versionText = "#version 120";
        }
        rules.emplace_back("raise-version");
    }
    if (!versionText.empty())
    {
        front += versionText + "\n";
    }

    // extension-first
    bool moved = false;
    for (const Directive &directive : scan.directives)
    {
        if (directive.name == "extension" && directive.behindCode && !directive.conditional)
        {
            front += directiveText(scan, directive) + "\n";
            edits.push_back(removal(text, scan, directive));
            moved = true;
        }
    }
    if (moved)
    {
        rules.emplace_back("extension-first");
    }

    // lod-extension
    const char *const lod = "GL_ARB_shader_texture_lod";
    const bool readsLevels = std::any_of(scan.tokens.begin(), scan.tokens.end(),
                                         [](const Token &token) { return isLodFunction(token.text); });
    const bool asksForLod = std::any_of(scan.directives.begin(), scan.directives.end(),
                                        [&](const Directive &d) { return namesExtension(scan, d, lod); });
    if (stage == ShaderStage::Fragment && capabilities.textureLod && number < 130 && readsLevels &&
        !asksForLod)
    {
        front += std::string("#extension ") + lod + " : enable\n";
        rules.emplace_back("lod-extension");
    }

    // uniform-sampler
    const std::vector<std::size_t> samplers = bareSamplers(scan);
    for (const std::size_t place : samplers)
    {
        edits.push_back({place, 0, "uniform "});
    }
    if (!samplers.empty())
    {
        rules.emplace_back("uniform-sampler");
    }

    if (rules.empty())
    {
        return text;
    }
    if (appliedRules != nullptr)
    {
        appliedRules->insert(appliedRules->end(), rules.begin(), rules.end());
    }
    if (!front.empty())
    {
        // The #version line itself has no part in this if it stays: the lines go behind it.
        std::size_t place = 0;
        if (versionStays)
        {
            place = scan.code.find('\n', version->end);
            place = place == std::string::npos ? text.size() : place + 1;
            if (place == text.size())
            {
                front.insert(0, "\n");
            }
        }
        // Up to 3.20 the line behind "#line n" is line n + 1; from 3.30 on it is line n.
        const int next = linesAhead(text, place) + 1;
        front += "#line " + std::to_string(number < 330 ? next - 1 : next) + "\n";
        edits.insert(edits.begin(), Edit{place, 0, front});
    }
    return applyEdits(text, std::move(edits));
}

int osg::shaderVersion(const std::string &text)
{
    Scan scan;
    scanText(text, scan);
    const Directive *version = versionDirective(scan);
    return version != nullptr ? versionOf(scan, *version) : 110;
}

std::string osg::numberLines(const std::string &text)
{
    std::string result;
    std::size_t begin = 0;
    for (int line = 1; begin < text.size(); ++line)
    {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        char number[24];
        std::snprintf(number, sizeof(number), "%4d: ", line);
        result += number;
        result.append(text, begin, end - begin);
        result += '\n';
        begin = end + 1;
    }
    return result;
}
