Attribute VB_Name = "modGlobals"
Option Explicit

' Names and helpers shared by the forms and classes of Inventory.

Public Const APP_TITLE As String = "Inventory"
Public Const LOW_STOCK_LEVEL As Long = 5
Public Const MAX_QUANTITY As Long = 9999
Public Const CURRENCY_SIGN As String = "€"

Public Declare Function GetPrivateProfileString Lib "kernel32" Alias "GetPrivateProfileStringA" _
    (ByVal lpApplicationName As String, ByVal lpKeyName As Any, ByVal lpDefault As String, _
     ByVal lpReturnedString As String, ByVal nSize As Long, ByVal lpFileName As String) As Long

Public Enum StockUnit
    suPiece = 0
    suBox = 1
    suKilogram = 2
    suLitre = 3
End Enum

Public Type StockMovement
    ItemCode As String * 12
    Quantity As Long
    MovedOn As Date
    Reason As String
End Type

' Reads one setting from Inventory.ini in the program's folder.
Public Function ReadSetting(ByVal Section As String, ByVal Key As String, _
                            Optional ByVal DefaultValue As String = "") As String
    Dim buffer As String
    Dim length As Long

    buffer = String$(255, vbNullChar)
    length = GetPrivateProfileString(Section, Key, DefaultValue, buffer, Len(buffer), IniPath())
    ReadSetting = Left$(buffer, length)
End Function

' The settings file, next to the program.
Public Function IniPath() As String
    IniPath = App.Path
    If Right$(IniPath, 1) <> "\" Then IniPath = IniPath & "\"
    IniPath = IniPath & "Inventory.ini"
End Function

' Doubles single quotes so that the text can stand inside an SQL string literal.
Public Function SqlText(ByVal Text As String) As String
    SqlText = Replace(Text, "'", "''")
End Function

' A quantity with its unit, e.g. "12 box(es)".
Public Function FormatQuantity(ByVal Quantity As Long, _
                               Optional ByVal Unit As StockUnit = suPiece) As String
    Select Case Unit
        Case suBox: FormatQuantity = Quantity & " box(es)"
        Case suKilogram: FormatQuantity = Quantity & " kg"
        Case suLitre: FormatQuantity = Quantity & " l"
        Case Else: FormatQuantity = CStr(Quantity)
    End Select
End Function

' A price in the shop's currency, e.g. "€ 3.50".
Public Function FormatPrice(ByVal Amount As Currency) As String
    FormatPrice = CURRENCY_SIGN & " " & Format$(Amount, "0.00")
End Function

' Appends one movement to movements.log. The log is only a help: failures are ignored.
Public Sub LogMovement(Movement As StockMovement)
    Dim f As Integer

    On Error GoTo Failed
    f = FreeFile
    Open App.Path & "\movements.log" For Append As #f
    Print #f, Format$(Movement.MovedOn, "yyyy-mm-dd hh:nn"); vbTab; Trim$(Movement.ItemCode); _
              vbTab; Movement.Quantity; vbTab; Movement.Reason
    Close #f
    Exit Sub
Failed:
    If f <> 0 Then Close #f
End Sub
