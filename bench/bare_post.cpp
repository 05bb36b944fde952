// bare_post BODY-FILE: the minimum cost of a delivered pulse: WinHTTP, one POST, its reply.
#include "post.h"

int main(int argc, char** argv)
{
    return argc == 2 ? vantor::bench::PostFile(argv[1], [](HINTERNET, HINTERNET) {}) : 2;
}
