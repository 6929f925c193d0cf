#ifndef KVCART_PROJECTIONS_KVCONFORMALLATITUDE_H
#define KVCART_PROJECTIONS_KVCONFORMALLATITUDE_H

// The conformal latitude chi of a geodetic latitude phi, through their tangents
// (C. F. F. Karney, "Transverse Mercator with an accuracy of a few nanometers",
// J. Geodesy 85, 2011, eqs. 7-9 and 19-21):
//   tan chi = tan phi sqrt(1 + s^2) - s sqrt(1 + tan^2 phi), s = sinh(e atanh(e sin phi)),
// which is sinh of the isometric latitude asinh(tan phi) - e atanh(e sin phi).
// Square roots are taken as sqrt(1 + x^2) rather than hypot: the tangents here stay
// far below the range where that could overflow, and hypot is several times slower.
class CKvConformalLatitude
{
public:
    // t = tan(pi/4 - phi/2) ((1 + e sin phi) / (1 - e sin phi))^(e/2) = exp(-psi), with
    // psi the isometric latitude: the radius function of the conformal conics and
    // azimuthals (IOGP Guidance Note 7-2's t).
    static double T(double phi, double e);
    // tan chi from tan phi.
    static double TauPrime(double tau, double e);
    // tan phi from tan chi, by Newton's method on the equation above: the same root
    // that a fixed-point iteration reaches, in two or three steps to full precision.
    static double Tau(double tauPrime, double e);
};

#endif
