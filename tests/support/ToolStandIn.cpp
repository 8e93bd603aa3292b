// Stands in for the outside tools: it obeys the arguments of the program whose name it bears, as
// far as the system sees of them. "standin.txt" in its folder can make it fail, hang (with a child
// of its own), crash, or do nothing at all. What it was called with goes to "standin.log".
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> sources = {"Aircraft", "Airports", "FlightPlans"};

std::string contentOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const fs::path& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

std::map<std::string, std::string> orders()
{
    std::map<std::string, std::string> out;
    std::ifstream file("standin.txt");
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos)
            out[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return out;
}

int compile(const std::string& stamp)
{
    std::string traffic;
    for (const std::string& base : sources) {
        const std::string text = contentOf(base + stamp + ".txt");
        traffic += std::to_string(text.size()) + "\n" + text;
    }
    write("traffic_" + stamp + ".bgl", traffic);
    return 0;
}

int decompile(const std::string& stamp)
{
    std::ifstream file("traffic_" + stamp + ".bgl", std::ios::binary);
    if (!file) {
        std::cout << "There is no traffic file.\n";
        return 2;
    }
    for (const std::string& base : sources) {
        std::size_t size = 0;
        file >> size;
        file.get();
        std::string text(size, '\0');
        file.read(text.data(), std::streamsize(size));
        write(base + stamp + ".txt", text);
    }
    return 0;
}

int collect()
{
    std::ostringstream list;
    for (int i = 100; i < 300; ++i)
        list << "K" << i << ",N47* 26.94',W122* 18.56',433\r\n";
    write("Airports_FS2004.txt", list.str());
    return 0;
}

/// Copies each listed file into the simulator and keeps what it replaces.
int installAirports(const std::string& list, std::map<std::string, std::string> given)
{
    std::ifstream file(given["C"] + list.substr(2));
    if (!file)
        return 3;
    for (std::string line; std::getline(file, line);) {
        while (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty())
            continue;
        const fs::path from = given["C"] + line.substr(2);
        const fs::path to = fs::path(given["sim"]) / "SCENEDB/AFDFILES/SCENERY" / from.filename();
        if (fs::exists(to) && !fs::exists(to.string() + ".ORIGINAL"))
            fs::rename(to, to.string() + ".ORIGINAL");
        fs::copy_file(from, to, fs::copy_options::overwrite_existing);
    }
    return 0;
}

void hang()
{
    const pid_t child = fork();
    if (child > 0)
        std::ofstream("standin.pids") << getpid() << '\n' << child << '\n';
    sleep(300);
}

std::string withSlashes(std::string text)
{
    for (char& c : text)
        c = c == '\\' ? '/' : c;
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string name = fs::path(argv[0]).filename();
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::ofstream log("standin.log", std::ios::app);
    log << name;
    for (const std::string& argument : arguments)
        log << '|' << argument;
    log << std::endl;

    const auto given = orders();
    const std::string mode = given.count("mode") ? given.at("mode") : "";
    if (mode == "fail") {
        std::cout << "first words\nThe disk is round.\n";
        return 7;
    }
    if (mode == "hang")
        hang();
    if (mode == "crash") {
        std::signal(SIGSEGV, SIG_DFL); // a sanitizer's handler would end it with an exit status
        std::raise(SIGSEGV);
    }
    if (mode == "silent" || arguments.empty())
        return 0;
    const std::string& last = arguments.back();
    if (name == "TTools.exe" && last.size() > 3)
        return last.rfind("/co", 0) == 0 ? compile(last.substr(3)) : decompile(last.substr(3));
    if (name == "CollectAirports.exe")
        return collect();
    if (name == "AFInstaller.exe") {
        // Listed paths are Windows texts; only this program needs them as the host's.
        const std::string list = given.at("C") + withSlashes(arguments.front()).substr(2);
        write(list, withSlashes(contentOf(list)));
        return installAirports(withSlashes(arguments.front()), given);
    }
    return 0;
}
