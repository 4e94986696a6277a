"""The C prototype of every exported function, for the binding's ctypes declarations.

Written from the C headers by the build (cmake/QZPublicApi.cmake): do not edit. After a change
to a declaration, `cmake --build build --target update_python_mirrors` rewrites this file.
One function a line: name, result type, argument types (codes in qzmath/_api.py).
"""
__all__ = ["PROTOTYPES"]

PROTOTYPES = """
# QZBaseMath
QZ_Sqrt                      D    D
QZ_Fabs                      D    D
QZ_3Root                     D    D
QZ_SIN_ARC                   D    D
QZ_COS_ARC                   D    D
QZ_SIN_DEG                   D    D
QZ_COS_DEG                   D    D
QZ_SIN_COS_ARC               void D D* D*
QZ_SIN_COS_DEG               void D D* D*
QZ_Sigmod                    D    D
QZ_ATan2                     D    D D
QZ_ACOS                      D    D
QZ_MAX                       D    D D
QZ_MIN                       D    D D
QZ_IsZero                    U8   D
QZ_IsZeroL                   U8   D
QZ_Floor                     D    D
QZ_Value_Sig                 D    D
QZ_SqureSolve                I32  D D D D*
QZ_CubicSolve                I32  D D D D D*
QZ_CubicSolve_Min_Pos        U8   D D D D D*
QZ_CubicSolve_Max_Nag        U8   D D D D D*
QZ_Solve2OrderEq             I32  D D D D* D*
QZ_Solve3OrderEq             I32  D D D D D* D*
QZ_Solve4OrderEq             I32  D D D D D D* D*
QZ_Solve4OrderEqR            I32  D D D D D D*
QZ_SolvePolynomialResult     D    D* D I32
QZ_CalAngleCDEG              D    D D D
QZ_PointToLine               I32  D* D* D* D*
QZ_MinDif_Circle             D    D D*
ValueToTarget                void D* D D
# QZDT
QZVDT_OnInit                 U8   QZVDTState* D D D
QZVDT_OnEmpty                U8   QZVDTState*
QZVDT_OnDT                   U8   QZVDTState* D D*
QZVDT_OnSetRunTimeLmt        U8   QZVDTState* D D
QZVDT_OnSetRunTimeVel        U8   QZVDTState* D
QZVDT_OnSetRunTimeAcc        U8   QZVDTState* D
QZNSyncDTS_OnInit            U8   QZNSyncDTSState* I32 D D* D* D*
QZNSyncDTS_OnEmpty           U8   QZNSyncDTSState*
QZNSyncDTS_OnSetRunTimeLmt   U8   QZNSyncDTSState* D* D*
QZNSyncDTS_OnSetRunTimeVel   U8   QZNSyncDTSState* D*
QZNSyncDTS_OnSetRunTimeAcc   U8   QZNSyncDTSState* D*
QZNSyncDTS_OnDT              U8   QZNSyncDTSState* D* D*
QZNSyncDTS_OnDT2             U8   QZNSyncDTSState* D* D* D* D*
QZNSyncDTS_OnDT_NoChange     U8   QZNSyncDTSState* D*
QZNSyncDTS_OnGetCurPVA       U8   QZNSyncDTSState* D* D* D* D*
QZNSyncDTS_OnGetCurPVA_U     U8   QZNSyncDTSState* D* D* D*
QZVDT_OnInitM                U8   QZVDTMState* D D D I32
QZVDT_OnEmptyM               U8   QZVDTMState*
QZVDT_OnDT_BM                U8   QZVDTMState* D D*
QZVDT_OnSetRunTimeLmtM       U8   QZVDTMState* D D I32
QZOnInitEst                  void QZNEstState* I32 D D* D*
QZNEst_OnEmpty               I32  QZNEstState*
QZNEst_OnSetRunTimeLmt       I32  QZNEstState* D*
QZNEst_OnDT                  I32  QZNEstState* I32 D* D* D*
OneFitterInit                void OneFitterState* I32 D*
OneFitterRun                 I32  OneFitterState* D* D*
QZ_DCTRL_ErrorCompare_Init   I32  I32 QZDCTRLErrorState*
QZ_DCTRL_ErrorCompare        I32  I32 D* D* QZDCTRLErrorState* D*
QZNSyncDTS_OnInitM           U8   QZNSyncDTSMState* I32 D D* D* D* I32
QZNSyncDTS_OnEmptyM          U8   QZNSyncDTSMState*
QZNSyncDTS_OnSetRunTimeLmtM  U8   QZNSyncDTSMState* D* D*
QZNSyncDTS_OnDTM             U8   QZNSyncDTSMState* D* D*
QZNSyncDTS_OnDT_UM           U8   QZNSyncDTSMState* D*
QZNSyncDTS_OnGetCurPVAM      U8   QZNSyncDTSMState* D* D* D* D*
QZNSyncDTS_OnGetCurPVA_UM    U8   QZNSyncDTSMState* D* D* D*
# QZFLT
QZAVGF_OnInit                I32  QZAVGFState* I32 I32 D
QZAVGF_OnEmpty               I32  QZAVGFState*
QZAVGF_OnFilt                I32  QZAVGFState* D* D* D*
QZSMV_OnInit                 I32  QZSMVState* D D D D
QZSMV_OnUpdateV              void QZSMVState* D D*
QZSMV_OnUpdateVZO            void QZSMVState* D D* U8* U8*
QZSMV_OnUpdateZO             void QZSMVState* D U8* U8*
# QZKinematics
QZKin_ChainInit              I32  QZKinChain* I32 D* D* D* D*
QZKin_SetDamping             I32  QZKinChain* D D D
QZKin_Forward                I32  QZKinChain* D* D*
QZKin_ForwardPosQuat         I32  QZKinChain* D* D*
QZKin_Jacobian               I32  QZKinChain* D* D* D*
QZKin_OrientationError       I32  D* D* D*
QZKin_DampedLeastSquares     I32  QZKinChain* D* D* D* D*
QZKin_TrackerLead            I32  QZNSyncDTSState* D* D* D* D*
QZKin_SolvePosition          I32  QZKinChain* D* D* I32 D D D* D* I32*
# QZMatrix
QZ_VectNorm2                 I32  D*
QZ_VectNorm3                 I32  D*
QZ_VectNorm4                 I32  D*
QZ_VectNorm5                 I32  D*
QZ_VectNorm6                 I32  D*
QZ_VectNorm7                 I32  D*
QZ_VectNorm8                 I32  D*
QZ_VectCpy2                  void D* D*
QZ_VectCpy3                  void D* D*
QZ_VectCpy4                  void D* D*
QZ_VectCpy5                  void D* D*
QZ_VectCpy6                  void D* D*
QZ_VectCpy7                  void D* D*
QZ_VectCpy8                  void D* D*
QZ_VectAdd2                  void D* D* D*
QZ_VectAdd3                  void D* D* D*
QZ_VectAdd4                  void D* D* D*
QZ_VectAdd5                  void D* D* D*
QZ_VectAdd6                  void D* D* D*
QZ_VectAdd7                  void D* D* D*
QZ_VectAdd8                  void D* D* D*
QZ_VectSA2                   void D* D D* D*
QZ_VectSA3                   void D* D D* D*
QZ_VectSA4                   void D* D D* D*
QZ_VectSA5                   void D* D D* D*
QZ_VectSA6                   void D* D D* D*
QZ_VectSA7                   void D* D D* D*
QZ_VectSA8                   void D* D D* D*
QZ_VectSub                   void D* I32 D* D*
QZ_VectAddX                  void D* I32 D* D*
QZ_VectDotMult               void D* I32 D* D*
QZ_VectSAX                   void D* I32 D D* D*
QZ_VectScale                 void D* I32 D D*
QZ_VectDot                   D    D* D* I32
QZ_VectLength                D    D* I32
QZ_VectNorm                  I32  D* I32
QZ_VectAngle                 D    D* D* I32
VectNormalized               void D* I32 D*
CalShadowVector              void D* D* D* I32
QZ_VectCross                 void D* D* D*
QZ_GetVectLenA2B             D    D* D*
QZ_GetVectNormA2B            I32  D* D* D*
QZ_GetVectNormLenA2B         I32  D* D* D* D*
QZ_MatrixMult2               void D* D* D*
QZ_MatrixMult3               void D* D* D*
QZ_MatrixMult4               void D* D* D*
QZ_MatrixMult5               void D* D* D*
QZ_MatrixMult6               void D* D* D*
QZ_MatrixMult7               void D* D* D*
QZ_MatrixMult8               void D* D* D*
QZ_MatrixCpy2                void D* D*
QZ_MatrixCpy3                void D* D*
QZ_MatrixCpy4                void D* D*
QZ_MatrixCpy5                void D* D*
QZ_MatrixCpy6                void D* D*
QZ_MatrixCpy7                void D* D*
QZ_MatrixCpy8                void D* D*
QZ_MatrixIdentity2           void D*
QZ_MatrixIdentity3           void D*
QZ_MatrixIdentity4           void D*
QZ_MatrixIdentity5           void D*
QZ_MatrixIdentity6           void D*
QZ_MatrixIdentity7           void D*
QZ_MatrixIdentity8           void D*
QZ_MatrixAdd2                void D* D* D*
QZ_MatrixAdd3                void D* D* D*
QZ_MatrixAdd4                void D* D* D*
QZ_MatrixAdd5                void D* D* D*
QZ_MatrixAdd6                void D* D* D*
QZ_MatrixAdd7                void D* D* D*
QZ_MatrixAdd8                void D* D* D*
QZ_MatrixTranspose2          void D* D*
QZ_MatrixTranspose3          void D* D*
QZ_MatrixTranspose4          void D* D*
QZ_MatrixTranspose5          void D* D*
QZ_MatrixTranspose6          void D* D*
QZ_MatrixTranspose7          void D* D*
QZ_MatrixTranspose8          void D* D*
QZ_MatrixMult6777            void D* D* D*
QZ_MatrixMult6776            void D* D* D*
QZ_MMM44                     void D* D* D*
QZ_MatrixMult3m4             void D* D* D*
QZ_MatrixSub67               void D* D* D*
QZ_MmultDiagM66              void D* D* D*
QZ_Mat67Transpose            void D* D*
Mat4433Transpose             void D* D*
MatTr33                      void D* D*
MatTr44                      void D* D*
QZ_MatrixMultVect3           void D* D* D*
QZ_MatrixMultVect4           void D* D* D*
QZ_MatrixMultVect6           void D* D* D*
QZ_MatrixMultVect7           void D* D* D*
QZ_Matrix67MultVect7         void D* D* D*
QZ_Matrix76MultVect6         void D* D* D*
QZ_MVmult43                  void D* D* D*
QZ_VMmult1666                void D* D* D*
QZ_VMmult1777                void D* D* D*
QZ_MatrixAddX                void D** I32 I32 D** D**
QZ_MatrixTransposeXX         void D** I32 I32 D**
QZ_MatrixMultXmX             void D** I32 I32 D** I32 D**
QZ_MatrixMultVectX           void D** I32 I32 D* D*
QZ_MatrixInv2                U8   D* D*
QZ_MatrixInv3                U8   D* D*
QZ_MatrixInv4                U8   D* D*
QZ_MatrixInv5                U8   D* D*
QZ_MatrixInv6                U8   D* D*
QZ_MatrixInv7                U8   D* D*
QZ_MatrixInv8                U8   D* D*
QZ_PGMatrixInv               U8   D* D*
QZ_MatrixDeterminant         D    D* I32
QZ_MatLUPD                   I32  D** I32 I32 I32*
QZ_LUPSolveEq                void D** I32 I32* D* D*
QZ_MatLUPDet                 D    D** I32 I32*
QZ_MatLUPInv                 void D** I32 I32* D**
QZ_LeftPsoInv76              U8   D* D*
QZ_RightPsoInv67             U8   D* D*
Cholesky                     I32  D* D* I32
Cholesky7                    I32  D* D* I32
VMV                          D    D* D* I32
eig                          U8   I32 D* D* D
eig7                         U8   D* D* D
generalized_eig              U8   D D* D* D* D*
generalized_eig7             U8   D D* D* D* D*
QZ_RotXARC                   void D D*
QZ_RotYARC                   void D D*
QZ_RotZARC                   void D D*
QZ_ZYZ2Matrix                void D D D D*
QZ_Matrix2ZYZ                U32  D* D*
QZ_Matrix42ZYZ               U32  D* D*
QZ_Matrix2XYZ                U32  D* D*
QZ_Matrix42XYZ               U32  D* D*
QZ_XYZABC2Matrix4ARC         void D* D*
QZ_XYZABC2Matrix4DEG         void D* D*
QZ_Matrix2XYZABC4ARC_ZYZ     U32  D* D*
QZ_Matrix2XYZABC4DEG_ZYZ     U32  D* D*
QZ_Matrix2XYZABC4ARC_XYZ     U32  D* D*
QZ_Matrix2XYZABC4DEG_XYZ     U32  D* D*
QZ_ABC2Matrix3ARC            U32  D* D*
QZ_ABC2Matrix3DEG            U32  D* D*
QZ_XYZMRot                   void D* D D D*
QZ_CALC_TRANS_FROM_Rotxyz    void D* D*
QZ_DH2Matrix                 void D D D D D*
QZ_Skew                      void D* D*
QZ_LOperator                 void D* D*
QZ_LineCross                 U32  D* D* D* D* D*
QZ_VectAddMV                 void D* D** I32 I32 D* D*
QZ_JACOB_TRAN_T66            void D* D* D*
QZ_JACOB_TRAN_T67            void D* D* D*
QZ_JACOBI_TRANS_T67          void D* D* D*
Mat67Transpose               void D* D*
MVmult677                    void D* D* D*
# QZQuaternions
QZ_QuatMult                  void D* D* D*
QZ_QuaternionNorm            U32  D*
QZ_QuaternionSqrtNorm        D    D*
QZ_QuaternionConjugate       void D* D*
QZ_QuaternionInverse         U32  D* D*
QZ_QuaternionAngleDeg        D    D* D*
QZ_QuaternionAngleArc        D    D* D*
QZ_Matrix2Quaternion3        void D* D*
QZ_Matrix2Quaternion4        void D* D*
QZ_Quaternion2Matrix3        void D* D*
QZ_Quaternion2Matrix4        void D* D*
QZ_Matrix2PosQuat            void D* D*
QZ_PosQuat2Matrix_UnNorm     U32  D* D*
QZ_PosQuat2Matrix            void D* D*
QZ_XYZABC2XYZQ               U32  D*
QZ_QuatSlerp                 void D* D* D D*
QZ_QuatSlerpL                void D* D* D D*
QZ_QuatSlerpFactor           void D* D* D D* QZSlerpFactorState*
QZ_QuatSlerpFactorL          void D* D* D D* QZSlerpFactorState*
QZ_QuatSlerpDir              I32  D* D* D*
axis_angle_to_rotmat         void D* D*
rotmat_to_axis_angle         void D* D*
AngleMult                    void D* D* D*
relative_rotation            void D* D* D*
relative_Angle               void D* D* D*
# QZVersion
QZ_Version                   U32 
"""
