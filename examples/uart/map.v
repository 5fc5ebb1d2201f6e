// How Yosys's own cells become those of library.v.

(* techmap_celltype = "$lut" *)
module map_lut (A, Y);
    parameter WIDTH = 0;
    parameter LUT = 0;
    input [WIDTH-1:0] A;
    output Y;
    generate
        if (WIDTH == 1) LUT1 #(.INIT(LUT)) _TECHMAP_REPLACE_ (.O(Y), .I0(A[0]));
        if (WIDTH == 2) LUT2 #(.INIT(LUT)) _TECHMAP_REPLACE_ (.O(Y), .I0(A[0]), .I1(A[1]));
        if (WIDTH == 3) LUT3 #(.INIT(LUT)) _TECHMAP_REPLACE_ (.O(Y), .I0(A[0]), .I1(A[1]), .I2(A[2]));
        if (WIDTH == 4)
            LUT4 #(.INIT(LUT)) _TECHMAP_REPLACE_ (.O(Y), .I0(A[0]), .I1(A[1]), .I2(A[2]), .I3(A[3]));
    endgenerate
endmodule

module \$_DFF_P_ (input D, C, output Q);
    DFF _TECHMAP_REPLACE_ (.C(C), .D(D), .Q(Q));
endmodule

module \$_DFFE_PP_ (input D, C, E, output Q);
    DFFE _TECHMAP_REPLACE_ (.C(C), .CE(E), .D(D), .Q(Q));
endmodule

module \$_SDFFCE_PP0P_ (input D, C, E, R, output Q);
    DFFRE _TECHMAP_REPLACE_ (.C(C), .CE(E), .R(R), .D(D), .Q(Q));
endmodule
