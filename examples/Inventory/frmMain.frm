VERSION 5.00
Object = "{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0"; "MSCOMCTL.OCX"
Begin VB.Form frmMain 
   Caption         =   "Stock Items"
   ClientHeight    =   5655
   ClientLeft      =   165
   ClientTop       =   855
   ClientWidth     =   8415
   KeyPreview      =   -1  'True
   LinkTopic       =   "Form1"
   ScaleHeight     =   5655
   ScaleWidth      =   8415
   StartUpPosition =   3  'Windows Default
   Begin VB.Label lblSearch 
      Caption         =   "&Find item:"
      Height          =   255
      Left            =   120
      TabIndex        =   0
      Top             =   150
      Width           =   1095
   End
   Begin VB.TextBox txtSearch 
      Height          =   315
      Left            =   1320
      TabIndex        =   1
      ToolTipText     =   "Start of an item's description"
      Top             =   120
      Width           =   2895
   End
   Begin VB.ComboBox cboCategory 
      Height          =   315
      ItemData        =   "frmMain.frx":0000
      Left            =   4320
      List            =   "frmMain.frx":0013
      Style           =   2  'Dropdown List
      TabIndex        =   2
      Top             =   120
      Width           =   2055
   End
   Begin MSComctlLib.ListView lvwItems 
      Height          =   4335
      Left            =   120
      TabIndex        =   3
      Top             =   600
      Width           =   6255
      _ExtentX        =   11033
      _ExtentY        =   7646
      View            =   3
      LabelEdit       =   1
      LabelWrap       =   -1  'True
      HideSelection   =   0   'False
      FullRowSelect   =   -1  'True
      GridLines       =   -1  'True
      _Version        =   393217
      ForeColor       =   -2147483640
      BackColor       =   -2147483643
      BorderStyle     =   1
      Appearance      =   1
      NumItems        =   3
      BeginProperty ColumnHeader(1) {BDD1F052-858B-11D1-B16A-00C0F0283628} 
         Text            =   "Code"
         Object.Width           =   1764
      EndProperty
      BeginProperty ColumnHeader(2) {BDD1F052-858B-11D1-B16A-00C0F0283628} 
         SubItemIndex    =   1
         Text            =   "Description"
         Object.Width           =   5292
      EndProperty
      BeginProperty ColumnHeader(3) {BDD1F052-858B-11D1-B16A-00C0F0283628} 
         Alignment       =   1
         SubItemIndex    =   2
         Text            =   "In stock"
         Object.Width           =   1764
      EndProperty
   End
   Begin VB.Frame fraFilter 
      Caption         =   "Show"
      Height          =   1095
      Left            =   6600
      TabIndex        =   4
      Top             =   540
      Width           =   1695
      Begin VB.OptionButton optAll 
         Caption         =   "&All items"
         Height          =   255
         Left            =   120
         TabIndex        =   5
         Top             =   300
         Value           =   -1  'True
         Width           =   1455
      End
      Begin VB.OptionButton optLow 
         Caption         =   "&Low stock"
         Height          =   255
         Left            =   120
         TabIndex        =   6
         Top             =   660
         Width           =   1455
      End
   End
   Begin VB.CommandButton cmdAction 
      Caption         =   "&Add..."
      Height          =   375
      Index           =   0
      Left            =   6600
      TabIndex        =   7
      Top             =   1800
      Width           =   1695
   End
   Begin VB.CommandButton cmdAction 
      Caption         =   "&Remove"
      Height          =   375
      Index           =   1
      Left            =   6600
      TabIndex        =   8
      Top             =   2280
      Width           =   1695
   End
   Begin Inventory.ctlQuantity ctlQty 
      Height          =   375
      Left            =   6600
      TabIndex        =   9
      Top             =   2880
      Width           =   1695
      _ExtentX        =   2990
      _ExtentY        =   661
      Value           =   1
      Max             =   500
   End
   Begin VB.Label lblStatus 
      BorderStyle     =   1  'Fixed Single
      Caption         =   "Ready"
      Height          =   315
      Left            =   120
      TabIndex        =   10
      Top             =   5160
      Width           =   8175
   End
   Begin VB.Menu mnuFile 
      Caption         =   "&File"
      Begin VB.Menu mnuFileOpen 
         Caption         =   "&Open Stock"
         Shortcut        =   ^O
      End
      Begin VB.Menu mnuFileSep1 
         Caption         =   "-"
      End
      Begin VB.Menu mnuFileExit 
         Caption         =   "E&xit"
      End
   End
   Begin VB.Menu mnuHelp 
      Caption         =   "&Help"
      Begin VB.Menu mnuHelpAbout 
         Caption         =   "&About Inventory..."
      End
   End
End
Attribute VB_Name = "frmMain"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
Option Explicit

' The stock list: search, filter by category or low stock, add and remove items.

Private Const CONNECTION_STRING As String = "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=stock.mdb"

Private mConn As ADODB.Connection
Private WithEvents mItem As CStockItem
Attribute mItem.VB_VarHelpID = -1

Private Sub Form_Load()
    Set mConn = New ADODB.Connection
    mConn.ConnectionString = CONNECTION_STRING
    cboCategory.ListIndex = 0
    SetStatus "Ready"
End Sub

Private Sub Form_KeyDown(KeyCode As Integer, Shift As Integer)
    If KeyCode = vbKeyF5 Then LoadItems
End Sub

Private Sub Form_Resize()
    If Me.WindowState = vbMinimized Then Exit Sub
    If Me.ScaleWidth < 4000 Or Me.ScaleHeight < 2400 Then Exit Sub
    fraFilter.Left = Me.ScaleWidth - fraFilter.Width - 120
    cmdAction(0).Left = fraFilter.Left
    cmdAction(1).Left = fraFilter.Left
    ctlQty.Left = fraFilter.Left
    lvwItems.Width = fraFilter.Left - lvwItems.Left - 225
    lblStatus.Top = Me.ScaleHeight - lblStatus.Height - 120
    lblStatus.Width = Me.ScaleWidth - 240
    lvwItems.Height = lblStatus.Top - lvwItems.Top - 120
End Sub

Private Sub Form_Unload(Cancel As Integer)
    Set mItem = Nothing
    CloseStock
End Sub

Private Sub cboCategory_Click()
    LoadItems
End Sub

Private Sub cmdAction_Click(Index As Integer)
    Select Case Index
        Case 0
            AddItem
        Case 1
            RemoveSelected
    End Select
End Sub

Private Sub lvwItems_ColumnClick(ByVal ColumnHeader As MSComctlLib.ColumnHeader)
    lvwItems.SortKey = ColumnHeader.Index - 1
    lvwItems.Sorted = True
End Sub

Private Sub mItem_QuantityChanged(ByVal OldQuantity As Long, ByVal NewQuantity As Long)
    If NewQuantity < LOW_STOCK_LEVEL And OldQuantity >= LOW_STOCK_LEVEL Then
        SetStatus mItem.Description & " is running low"
    End If
End Sub

Private Sub mnuFileExit_Click()
    Unload Me
End Sub

Private Sub mnuFileOpen_Click()
    OpenStock
    LoadItems
End Sub

Private Sub mnuHelpAbout_Click()
    MsgBox APP_TITLE & " " & App.Major & "." & App.Minor & vbCrLf & _
           "© Corner Shop Software", vbInformation, "About " & APP_TITLE
End Sub

Private Sub optAll_Click()
    LoadItems
End Sub

Private Sub optLow_Click()
    LoadItems
End Sub

Private Sub txtSearch_Change()
    LoadItems
End Sub

' Opens the stock database on first use; later calls do nothing.
Private Sub OpenStock()
    If mConn.State = adStateClosed Then mConn.Open
End Sub

Private Sub CloseStock()
    If mConn Is Nothing Then Exit Sub
    If mConn.State <> adStateClosed Then mConn.Close
    Set mConn = Nothing
End Sub

' Fills the list with the items that match the search text, the category and the filter.
Private Sub LoadItems()
    Dim rs As ADODB.Recordset
    Dim sql As String
    Dim li As MSComctlLib.ListItem

    If mConn Is Nothing Then Exit Sub
    If mConn.State = adStateClosed Then Exit Sub

    sql = "SELECT Code, Description, Quantity FROM Items " & _
          "WHERE Description LIKE '" & SqlText(txtSearch.Text) & "%'"
    If cboCategory.ListIndex > 0 Then
        sql = sql & " AND CategoryID = " & cboCategory.ItemData(cboCategory.ListIndex)
    End If
    If optLow.Value Then sql = sql & " AND Quantity < " & LOW_STOCK_LEVEL

    lvwItems.ListItems.Clear
    Set rs = mConn.Execute(sql)
    Do Until rs.EOF
        Set li = lvwItems.ListItems.Add(, , rs!Code)
        li.SubItems(1) = rs!Description
        li.SubItems(2) = FormatQuantity(rs!Quantity)
        rs.MoveNext
    Loop
    rs.Close
    SetStatus lvwItems.ListItems.Count & " item(s)"
End Sub

Private Sub AddItem()
    Dim itemCode As String

    OpenStock
    itemCode = Trim$(InputBox("Code of the new item:", APP_TITLE))
    If Len(itemCode) = 0 Then Exit Sub

    Set mItem = New CStockItem
    mItem.Code = itemCode
    mItem.Description = InputBox("Description:", APP_TITLE, itemCode)
    mItem = ctlQty.Value
    mConn.Execute "INSERT INTO Items (Code, Description, Quantity) VALUES ('" & _
                  SqlText(mItem.Code) & "', '" & SqlText(mItem.Description) & "', " & mItem & ")"
    LoadItems
End Sub

Private Sub RemoveSelected()
    If lvwItems.SelectedItem Is Nothing Then Exit Sub
    If MsgBox("Remove " & lvwItems.SelectedItem.Text & " from the stock?", _
              vbQuestion + vbYesNo, APP_TITLE) = vbNo Then Exit Sub
    mConn.Execute "DELETE FROM Items WHERE Code = '" & SqlText(lvwItems.SelectedItem.Text) & "'"
    LoadItems
End Sub

Private Sub SetStatus(ByVal Message As String)
    lblStatus.Caption = Message
End Sub
