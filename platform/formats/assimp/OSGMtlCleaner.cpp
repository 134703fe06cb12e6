/// \file
/// Line by line through a material file.

#include "OSGMtlCleaner.h"

#include <cmath>
#include <sstream>

OSG_BEGIN_NAMESPACE

namespace
{

/// Up to three finite numbers that follow; none where there are fewer than `least`.
std::vector<Real32> numbersIn(std::istringstream &words, std::size_t least)
{
    std::vector<Real32> numbers;
    Real32 number = 0;
    while(numbers.size() < 3 && words >> number && std::isfinite(number))
        numbers.push_back(number);
    if(numbers.size() < least)
        numbers.clear();
    return numbers;
}

bool namesTexture(const std::string &word)
{
    return word.compare(0, 4, "map_") == 0 || word == "bump" || word == "disp" || word == "decal" ||
           word == "refl" || word == "norm";
}

} // namespace

std::string cleanMtl(const std::vector<UInt8> &bytes, std::vector<std::string> &textures)
{
    std::istringstream lines(std::string(bytes.begin(), bytes.end()));
    std::ostringstream cleaned;
    bool inMaterial = false;
    for(std::string line; std::getline(lines, line);)
    {
        while(!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
            line.pop_back();
        std::istringstream words(line);
        std::string word, name;
        words >> word;
        if(word == "newmtl")
        {
            std::getline(words >> std::ws, name);
            inMaterial = !name.empty();
            if(inMaterial)
                cleaned << "newmtl " << name << "\n";
        }
        else if(!inMaterial)
            continue;
        else if(word == "Ka" || word == "Kd" || word == "Ks" || word == "Ke")
        {
            std::vector<Real32> color = numbersIn(words, 1);
            if(color.empty())
                continue;
            color.resize(3, color[0]); // one number is a grey
            cleaned << word << " " << color[0] << " " << color[1] << " " << color[2] << "\n";
        }
        else if(word == "Ns" || word == "d" || word == "Tr")
        {
            const std::vector<Real32> number = numbersIn(words, 1);
            if(!number.empty())
                cleaned << (word == "Ns" ? "Ns " : "d ") << (word == "Tr" ? 1 - number[0] : number[0])
                        << "\n";
        }
        else if(namesTexture(word))
        {
            // Options stand ahead of the name.
            while(words >> word)
                name = word;
            if(!name.empty())
                textures.push_back(name);
        }
    }
    return cleaned.str();
}

OSG_END_NAMESPACE
