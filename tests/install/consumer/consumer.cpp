// A host program built against an installed KvCart: the C interface for a
// point, the C++ classes for the same point, from the installed catalogue.
#include <kvcart/coordsys/KvMapProjection.h>
#include <kvcart/interface/KvCart.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    const std::string catalogue = argc > 1 ? argv[1] : CATALOGUE_DIR;
    const std::string user = argc > 2 ? argv[2] : "/tmp/";
    CARTSETUPLINUX(catalogue.c_str(), user.c_str());
    KVMP_HANDLE utm = nullptr;
    int status = -1;
    C_KVMP_CREATE("UTM-32", &utm, &status);
    double x = 0, y = 0;
    if (status == 0)
        C_KVMP_GEO2PROJ(utm, 9.5, 47.5, &x, &y);
    C_KVMP_DESTROY(&utm, &status);
    double cx = 0, cy = 0;
    CKvMapProjection("UTM-32").Geo2Proj(9.5, 47.5, &cx, &cy);
    std::printf("%.4f %.4f\n", x, y);
    // cs2cs +proj=utm +zone=32 +datum=WGS84: 537656.6740 5260850.8753
    return std::fabs(x - 537656.6740) < 1e-3 && std::fabs(y - 5260850.8753) < 1e-3 && x == cx && y == cy
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
