// How fast an archiver could be if deflating were all it did: reads the named files, compresses
// them with libdeflate in pieces of 1 MiB (a smaller file is a piece of its own) on several
// threads, writes nothing, and prints the seconds that took, without the reading.
//
//     deflate_limit LEVEL THREADS FILE-WITH-NUL-SEPARATED-PATHS

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <libdeflate.h>

namespace
{

constexpr std::size_t pieceSize = 1 << 20;

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << "cannot read " << path << '\n';
        std::exit(EXIT_FAILURE);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> piecesOf(const std::string& listOfFiles)
{
    std::vector<std::string> pieces;
    std::ifstream list(listOfFiles);
    for (std::string path; std::getline(list, path, '\0');) {
        const std::string content = contentOf(path);
        for (std::size_t at = 0; at < content.size(); at += pieceSize)
            pieces.push_back(content.substr(at, pieceSize));
    }
    return pieces;
}

// Compresses whatever piece is next until there is none.
void compress(int level, const std::vector<std::string>& pieces, std::atomic<std::size_t>& next)
{
    libdeflate_compressor* const compressor = libdeflate_alloc_compressor(level);
    std::vector<char> out(libdeflate_deflate_compress_bound(compressor, pieceSize));
    for (std::size_t i = next++; i < pieces.size(); i = next++)
        libdeflate_deflate_compress(
            compressor, pieces[i].data(), pieces[i].size(), out.data(), out.size());
    libdeflate_free_compressor(compressor);
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() != 4) {
        std::cerr << "usage: deflate_limit LEVEL THREADS LIST\n";
        return 2;
    }
    const int level = std::atoi(argv[1]);
    const int threadCount = std::atoi(argv[2]);
    const std::vector<std::string> pieces = piecesOf(arguments[3]);

    std::atomic<std::size_t> next = 0;
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<std::size_t>(threadCount));
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&] { compress(level, pieces, next); });
    threads.clear(); // joins them
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::cout << seconds.count() << '\n';
    return 0;
}
