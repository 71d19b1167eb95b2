VERSION 5.00
Begin VB.UserControl ctlQuantity 
   ClientHeight    =   375
   ClientLeft      =   0
   ClientTop       =   0
   ClientWidth     =   1695
   ScaleHeight     =   375
   ScaleWidth      =   1695
   Begin VB.CommandButton cmdUp 
      Caption         =   "+"
      Height          =   375
      Left            =   1320
      TabIndex        =   2
      Top             =   0
      Width           =   375
   End
   Begin VB.CommandButton cmdDown 
      Caption         =   "-"
      Height          =   375
      Left            =   960
      TabIndex        =   1
      Top             =   0
      Width           =   375
   End
   Begin VB.TextBox txtValue 
      Alignment       =   1  'Right Justify
      Height          =   375
      Left            =   0
      TabIndex        =   0
      Text            =   "0"
      Top             =   0
      Width           =   975
   End
End
Attribute VB_Name = "ctlQuantity"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = True
Attribute VB_PredeclaredId = False
Attribute VB_Exposed = False
Option Explicit

' A quantity box with - and + buttons; the value stays between Min and Max.

Private Const DEF_VALUE As Long = 0
Private Const DEF_MIN As Long = 0
Private Const DEF_MAX As Long = 100

Private mValue As Long
Private mMin As Long
Private mMax As Long

Public Event Change()

Public Property Get Value() As Long
Attribute Value.VB_UserMemId = 0
    Value = mValue
End Property

Public Property Let Value(ByVal NewValue As Long)
    If NewValue < mMin Then NewValue = mMin
    If NewValue > mMax Then NewValue = mMax
    If NewValue = mValue Then Exit Property
    mValue = NewValue
    txtValue.Text = CStr(mValue)
    PropertyChanged "Value"
    RaiseEvent Change
End Property

Public Property Get Min() As Long
    Min = mMin
End Property

Public Property Let Min(ByVal NewMin As Long)
    mMin = NewMin
    If mMax < mMin Then mMax = mMin
    PropertyChanged "Min"
    Value = mValue
End Property

Public Property Get Max() As Long
    Max = mMax
End Property

Public Property Let Max(ByVal NewMax As Long)
    mMax = NewMax
    If mMin > mMax Then mMin = mMax
    PropertyChanged "Max"
    Value = mValue
End Property

Private Sub cmdDown_Click()
    Value = mValue - 1
End Sub

Private Sub cmdUp_Click()
    Value = mValue + 1
End Sub

Private Sub txtValue_KeyPress(KeyAscii As Integer)
    If KeyAscii = vbKeyBack Then Exit Sub
    If KeyAscii < vbKey0 Or KeyAscii > vbKey9 Then KeyAscii = 0
End Sub

Private Sub txtValue_Validate(Cancel As Boolean)
    Value = Val(txtValue.Text)
    txtValue.Text = CStr(mValue)
End Sub

Private Sub UserControl_InitProperties()
    mMin = DEF_MIN
    mMax = DEF_MAX
    mValue = DEF_VALUE
    txtValue.Text = CStr(mValue)
End Sub

Private Sub UserControl_ReadProperties(PropBag As PropertyBag)
    mMin = PropBag.ReadProperty("Min", DEF_MIN)
    mMax = PropBag.ReadProperty("Max", DEF_MAX)
    mValue = PropBag.ReadProperty("Value", DEF_VALUE)
    txtValue.Text = CStr(mValue)
End Sub

Private Sub UserControl_WriteProperties(PropBag As PropertyBag)
    PropBag.WriteProperty "Value", mValue, DEF_VALUE
    PropBag.WriteProperty "Min", mMin, DEF_MIN
    PropBag.WriteProperty "Max", mMax, DEF_MAX
End Sub

Private Sub UserControl_Resize()
    Dim buttonWidth As Single

    buttonWidth = ScaleHeight
    If ScaleWidth < 3 * buttonWidth Then Exit Sub
    cmdUp.Move ScaleWidth - buttonWidth, 0, buttonWidth, ScaleHeight
    cmdDown.Move cmdUp.Left - buttonWidth, 0, buttonWidth, ScaleHeight
    txtValue.Move 0, 0, cmdDown.Left, ScaleHeight
End Sub
